#include "tools/render/FindingText.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <TalIec61850Analysis/packet/Quality.hpp>
#include <TalIec61850Analysis/packet/SampleQuality.hpp>
#include <TalIec61850Analysis/samples/FindLayouts.hpp>
#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

#include "tools/output/Plural.hpp"
#include "tools/render/AddressText.hpp"
#include "tools/render/DurationText.hpp"
#include "tools/render/MemberText.hpp"
#include "tools/render/QualityText.hpp"
#include "tools/render/UtcText.hpp"
#include "tools/render/ValueText.hpp"
#include "tools/selection/ChannelMeaning.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

std::int64_t numberIn(FindingValue const& value) {
    auto const* const number = std::get_if<std::int64_t>(&value);
    return number != nullptr ? *number : 0;
}

std::int64_t timeIn(FindingValue const& value) {
    auto const* const time = std::get_if<CaptureTime>(&value);
    return time != nullptr ? time->time_since_epoch().count() : 0;
}

bool isSv(Finding const& finding) { return finding.protocol == StreamProtocol::sv; }

/// The octets of an address or a clock as 00:30:a7:01:02:03.
std::string colonText(OctetString const& octets) {
    return fmt::format("{:02x}", fmt::join(octets, ":"));
}

std::string octetText(Finding const& finding, OctetString const& octets) {
    switch (finding.kind) {
        case FindingKind::twoPublishers:
        case FindingKind::grandmasterChanged:
            return colonText(octets);
        case FindingKind::dataSetChanged:
        case FindingKind::copyMissing:
        case FindingKind::copyDiffers:
        case FindingKind::copyExtra:
        case FindingKind::wrongLan:
            return {octets.begin(), octets.end()};
        default:
            return toHex(octets);
    }
}

std::vector<std::string> namesOf(std::vector<ChannelMeaning> const& meanings) {
    std::vector<std::string> names;
    names.reserve(meanings.size());
    for (ChannelMeaning const& meaning : meanings) {
        names.push_back(meaning.name);
    }
    return names;
}

/// The quality that a finding's number is.
std::string qualityWords(Finding const& finding, std::int64_t bits) {
    auto const word = static_cast<std::uint32_t>(bits);
    if (isSv(finding)) {
        return toText(SampleQuality{.word = word});
    }
    // The first bit of a BIT STRING is the highest of the 13.
    constexpr unsigned kUnusedBits = 3;
    std::uint32_t const shifted = word << kUnusedBits;
    std::array<std::uint8_t, 2> const octets = {static_cast<std::uint8_t>(shifted >> 8U),
                                                static_cast<std::uint8_t>(shifted)};
    auto const quality = readQuality({.octets = octets, .unusedBits = kUnusedBits});
    return quality ? toText(*quality) : toHex({octets.begin(), octets.end()});
}

/// A value in a sentence.
std::string valueText(Finding const& finding, FindingValue const& value) {
    struct Text {
        Finding const& finding;

        std::string operator()(std::monostate /*nothing*/) const { return "none"; }
        std::string operator()(std::int64_t number) const {
            return finding.kind == FindingKind::qualityChanged ? qualityWords(finding, number)
                                                               : std::to_string(number);
        }
        std::string operator()(double number) const { return fmt::format("{:.6g}", number); }
        std::string operator()(OctetString const& octets) const {
            return octetText(finding, octets);
        }
        std::string operator()(CaptureTime time) const { return toUtcText(time); }
    };
    return std::visit(Text{finding}, value);
}

std::string expectedText(Finding const& finding) { return valueText(finding, finding.expected); }
std::string foundText(Finding const& finding) { return valueText(finding, finding.found); }

/// "went from A to B".
std::string changeText(Finding const& finding) {
    return fmt::format("went from {} to {}", expectedText(finding), foundText(finding));
}

std::string millisecondsText(FindingValue const& value) {
    return fmt::format("{} ms", numberIn(value));
}

std::string synchText(FindingValue const& value) {
    auto const smpSynch = numberIn(value);
    return fmt::format("{} ({})", smpSynch, smpSynchText(static_cast<std::uint64_t>(smpSynch)));
}

/// Whether nothing came from the packet before until the one that shows the finding.
bool hasPause(Finding const& finding) {
    return finding.before && finding.before->time != kNoTime && finding.from != kNoTime &&
           finding.before->time < finding.from;
}

std::string pauseText(Finding const& finding) {
    return hasPause(finding) ? durationText(finding.before->time, finding.from)
                             : std::string("a time that is not known");
}

/// What is added to a time in which files were changed.
std::string_view borderText(Finding const& finding) {
    bool const isAtBorder =
        finding.place && finding.before && finding.place->file != finding.before->file;
    return isAtBorder ? ", from one file to the next" : "";
}

std::string witnessText(Finding const& finding) {
    std::uint64_t const frames = finding.witnessFrames;
    switch (finding.witness) {
        case LossWitness::dropCounts:
            return fmt::format(": it counted {}", plural(frames, "dropped packet"));
        case LossWitness::otherStreamsLost:
            return fmt::format(": {} at the same time",
                               frames == 1 ? std::string("another stream lacks packets")
                                           : fmt::format("{} other streams lack packets", frames));
        case LossWitness::otherStreamsRanOn:
            return fmt::format(": {} of other streams came meanwhile", plural(frames, "packet"));
        case LossWitness::redundancyGap:
            return fmt::format(": {} of the source missing too",
                               frames == 1 ? std::string("1 redundancy number is")
                                           : fmt::format("{} redundancy numbers are", frames));
        case LossWitness::redundancyRanOn:
            return ": the redundancy numbers of the source have no gap";
        case LossWitness::otherCopy:  // the sentence says so
        case LossWitness::none:
            break;
    }
    return {};
}

/// Who lost what is missing.
std::string causeText(Finding const& finding) {
    switch (finding.cause) {
        case LossCause::none:
            return {};
        case LossCause::capture:
            return "; lost in the capture" + witnessText(finding);
        case LossCause::network:
            return "; lost on the network" + witnessText(finding);
        case LossCause::publisher:
            return "; never sent" + witnessText(finding);
        case LossCause::unknown:
            break;
    }
    return "; nothing tells who lost them";
}

std::string reasonText(Finding const& finding) {
    switch (finding.reason.value_or(UnreadReason::noPdu)) {
        case UnreadReason::headerCut:
            return "it ends inside its header";
        case UnreadReason::cut:
            return "the snap length cut it before its name";
        case UnreadReason::noPdu:
            return "no PDU is after its header";
        case UnreadReason::pduPastFrame:
            return "its PDU claims more octets than it has";
        case UnreadReason::noName:
            return isSv(finding) ? "an ASDU has no svID" : "it has no gocbRef";
        case UnreadReason::noAsdu:
            break;
    }
    return "it has no ASDU";
}

std::string jitterText(Finding const& finding) {
    std::int64_t const away = numberIn(finding.found);
    std::string const limit = durationText(numberIn(finding.expected));
    // The sign goes into the word.
    std::string const length = durationText(std::int64_t{0}, away);
    std::string_view const which = away < 0 ? "early" : "late";
    return finding.count == 1
               ? fmt::format("a frame came {} {}, more than {}", length, which, limit)
               : fmt::format("{} came away from their course by more than {}, one {} {}",
                             plural(finding.count, "frame"), limit, length, which);
}

std::string expiredText(Finding const& finding) {
    std::string const late = durationText(timeIn(finding.expected), timeIn(finding.found));
    return finding.place
               ? fmt::format("timeAllowedtoLive ran out: the next message came {} too late{}", late,
                             borderText(finding))
               : fmt::format(
                     "timeAllowedtoLive ran out {} before the captures end, and no message "
                     "came",
                     late);
}

std::string dataSetText(Finding const& finding) {
    bool const areNames = std::holds_alternative<OctetString>(finding.expected) ||
                          std::holds_alternative<OctetString>(finding.found);
    if (areNames) {
        return "datSet " + changeText(finding);
    }
    if (finding.expected == finding.found) {
        return fmt::format("the {} of the data set have other types",
                           foundText(finding) + " members");
    }
    return fmt::format("{} {}", isSv(finding) ? "octets of seqData" : "members of the data set",
                       changeText(finding));
}

std::string twoPublishersText(Finding const& finding) {
    if (std::holds_alternative<OctetString>(finding.found)) {
        return fmt::format("{} is sent by two sources: {} and {}",
                           isSv(finding) ? "svID" : "gocbRef", expectedText(finding),
                           foundText(finding));
    }
    std::string_view const counter = isSv(finding) ? "smpCnt" : "stNum";
    return fmt::format("two counters take turns in one stream: {} {} and {}, {} of the second",
                       counter, expectedText(finding), foundText(finding),
                       plural(finding.count, "packet"));
}

/// What simulation is, by a number.
std::string_view simulatedText(FindingValue const& value) {
    return numberIn(value) != 0 ? "simulated" : "not simulated";
}

std::string simulationText(Finding const& finding) {
    switch (finding.kind) {
        case FindingKind::simulationBegan:
            return "packets are simulated from here on";
        case FindingKind::simulationEnded:
            return "packets are not simulated any more";
        case FindingKind::simulationContradicts:
            return fmt::format("the header says {}, the element of the message {}",
                               simulatedText(finding.expected), simulatedText(finding.found));
        default:
            return {};
    }
}

/// Which time stamp a finding is of.
std::string_view stampOf(Finding const& finding) { return isSv(finding) ? "refrTm" : "t"; }

std::string_view protocolText(Finding const& finding) { return isSv(finding) ? "SV" : "GOOSE"; }

/// What a stream says of itself; empty for all other kinds, as with the functions below.
std::string descriptionText(Finding const& finding) {
    switch (finding.kind) {
        case FindingKind::twoPublishers:
            return twoPublishersText(finding);
        case FindingKind::timeAllowedtoLiveZero:
            return "timeAllowedtoLive is 0: receivers cannot supervise the stream";
        case FindingKind::timeAllowedtoLiveChanged:
            return fmt::format("timeAllowedtoLive went from {} to {}",
                               millisecondsText(finding.expected), millisecondsText(finding.found));
        case FindingKind::confRevChanged:
            return fmt::format("confRev {}: the publisher was configured anew",
                               changeText(finding));
        case FindingKind::dataSetChanged:
            return dataSetText(finding);
        case FindingKind::rateChanged:
            return fmt::format("the rate {} samples a second", changeText(finding));
        case FindingKind::needsCommissioning:
            return "ndsCom is set: the control block is not configured in full";
        case FindingKind::entriesDiffer:
            return fmt::format(
                "numDatSetEntries is {}, but the data set has {}", expectedText(finding),
                plural(static_cast<std::uint64_t>(numberIn(finding.found)), "member"));
        default:
            return simulationText(finding);
    }
}

std::string clockText(Finding const& finding) {
    switch (finding.kind) {
        case FindingKind::expired:
            return expiredText(finding);
        case FindingKind::jitter:
            return jitterText(finding);
        case FindingKind::timeAhead:
            return fmt::format("t is {} later than arrival: one of the clocks is wrong",
                               durationText(timeIn(finding.expected), timeIn(finding.found)));
        case FindingKind::grandmasterChanged:
            return fmt::format("the grandmaster clock {}", changeText(finding));
        case FindingKind::synchLost:
            return fmt::format("smpSynch fell from {} to {}", synchText(finding.expected),
                               synchText(finding.found));
        case FindingKind::synchRegained:
            return fmt::format("smpSynch rose from {} to {}", synchText(finding.expected),
                               synchText(finding.found));
        case FindingKind::clockFailure:
            return fmt::format("{} says that its clock has failed", stampOf(finding));
        case FindingKind::clockNotSynchronized:
            return fmt::format("{} says that its clock is not synchronized", stampOf(finding));
        default:
            return {};
    }
}

/// Of the captures themselves.
std::string captureText(Finding const& finding) {
    switch (finding.kind) {
        case FindingKind::captureGap:
            return fmt::format(
                "all streams pause for {}{} and lack what should have come, {} in all",
                pauseText(finding), borderText(finding), plural(finding.lost, "packet"));
        case FindingKind::captureDropped:
            return fmt::format("the capture says that it lost {}", plural(finding.lost, "packet"));
        case FindingKind::clockStep:
            return fmt::format("the clock of the capture was set {} by {}",
                               numberIn(finding.found) < 0 ? "back" : "ahead",
                               durationText(std::int64_t{0}, numberIn(finding.found)));
        case FindingKind::recordsCut:
            return fmt::format("a snap length cut {}", plural(finding.count, "frame"));
        case FindingKind::fileEndsInRecord:
            return fmt::format("the file ends inside a record: {} of its {} octets are there",
                               foundText(finding), expectedText(finding));
        case FindingKind::unreadable:
            return fmt::format("{} frame that cannot be read: {}", protocolText(finding),
                               reasonText(finding));
        default:
            return {};
    }
}

/// Whether the sentence of a kind says how often it was met.
bool saysHowOften(FindingKind kind) {
    switch (kind) {
        case FindingKind::sampleGap:
        case FindingKind::sqNumGap:
        case FindingKind::stateGap:
        case FindingKind::stateStartMissing:
        case FindingKind::twoPublishers:
        case FindingKind::jitter:
        case FindingKind::copyMissing:
        case FindingKind::recordsCut:
            return true;
        default:
            return false;
    }
}

}  // namespace

std::string FindingText::sentence(Finding const& finding) {
    std::string text = what(finding);
    if (finding.count > 1 && !saysHowOften(finding.kind)) {
        text += fmt::format("; {} times in {}", finding.count,
                            durationText(finding.from, finding.until));
    }
    return text;
}

std::uint32_t FindingText::stNumOf(Finding const& finding) const {
    auto const& place = finding.place ? finding.place : finding.before;
    if (!finding.stream || !place) {
        return 0;
    }
    PacketRef const packet = place->packet;
    auto const stNums = index_.streams()[*finding.stream].parts[packet.part].packets.stNums();
    return stNums.empty() ? 0 : stNums[packet.packet];
}

/// "stNum 5, sqNum 3".
std::string FindingText::messageText(Finding const& finding) const {
    PacketRef const packet = finding.place->packet;
    auto const& packets = index_.streams()[*finding.stream].parts[packet.part].packets;
    return fmt::format("stNum {}, sqNum {}", packets.stNums()[packet.packet],
                       packets.sqNums()[packet.packet]);
}

/// "LAN A" of PRP, "lane A" of HSR: the way that the packet came over, or the other one. "one way"
/// and "the other one" where that is not known.
std::string FindingText::wayText(Finding const& finding, bool isOther) const {
    if (!finding.stream || !finding.place) {
        return isOther ? "the other one" : "one way";
    }
    PacketRef const packet = finding.place->packet;
    PacketFlags const flags =
        index_.streams()[*finding.stream].parts[packet.part].packets.flags()[packet.packet];
    if (flags.redundancy() == Redundancy::none) {
        return isOther ? "the other one" : "one way";
    }
    return fmt::format("{} {}", flags.redundancy() == Redundancy::hsr ? "lane" : "LAN",
                       (flags.lane() == 'B') != isOther ? 'B' : 'A');
}

std::string FindingText::copyMissingText(Finding const& finding) const {
    std::string const came = wayText(finding, false);
    std::string const lacks = wayText(finding, true);
    return finding.count == 1
               ? fmt::format("a frame came over {} alone: its copy over {} is missing", came, lacks)
               : fmt::format("{} in {} came over {} alone: their copies over {} are missing",
                             plural(finding.count, "frame"),
                             durationText(finding.from, finding.until), came, lacks);
}

std::string FindingText::gapText(Finding const& finding) const {
    std::string_view const unit = isSv(finding)                           ? "sample"
                                  : finding.kind == FindingKind::stateGap ? "state"
                                                                          : "message";
    std::string const lost = plural(finding.lost, unit);
    if (finding.count > 1) {
        return fmt::format("{} gaps in {}, {} missing{}", finding.count,
                           durationText(finding.from, finding.until), lost, causeText(finding));
    }
    if (finding.lost == 0) {
        return fmt::format("state {} begins with sqNum {}: sqNum was not reset", stNumOf(finding),
                           foundText(finding));
    }
    std::string counters;
    switch (finding.kind) {
        case FindingKind::stateGap:
            counters = fmt::format("{} missing: stNum", lost);
            break;
        case FindingKind::sqNumGap:
            counters = fmt::format("{} of state {} missing: sqNum", lost, stNumOf(finding));
            break;
        case FindingKind::stateStartMissing:
            counters =
                fmt::format("the first {} of state {} missing: sqNum", lost, stNumOf(finding));
            break;
        default:
            counters = fmt::format("{} missing: smpCnt", lost);
            break;
    }
    std::string const pause =
        hasPause(finding) ? fmt::format(", after {}", pauseText(finding)) : std::string();
    return fmt::format("{} {} expected, {} came{}{}{}", counters, expectedText(finding),
                       foundText(finding), pause, borderText(finding), causeText(finding));
}

/// What smpCnt says of a silence.
std::string FindingText::silentText(Finding const& finding) const {
    if (!finding.place) {
        return fmt::format("nothing for the last {} of the captures", pauseText(finding));
    }
    std::string pause = fmt::format("nothing for {}{}", pauseText(finding), borderText(finding));
    if (!finding.stream || !finding.before) {
        return pause;
    }
    TrafficStream const& stream = index_.streams()[*finding.stream];
    auto const smpCntAt = [&](PacketRef packet) {
        return stream.parts[packet.part].packets.smpCnts()[packet.packet];
    };
    std::uint32_t const before = smpCntAt(finding.before->packet);
    std::uint32_t const now = smpCntAt(finding.place->packet);
    auto const rate = index_.nominalRate(stream);
    bool const isWrap =
        now == 0 && before > 0 && (!rate || *rate == static_cast<double>(before) + 1);
    return now == before + 1 || isWrap
               ? pause + ", though smpCnt shows no gap"
               : fmt::format("{}; smpCnt went from {} to {}, which does not tell what is missing",
                             pause, before, now);
}

/// Which counter went back, or elsewhere: a publisher of GOOSE may begin anew in the first state
/// again.
std::string FindingText::restartText(Finding const& finding) const {
    if (isSv(finding)) {
        return fmt::format(
            "smpCnt goes on with {}, {} was due: nothing is missing, the publisher began anew or "
            "its clock was set",
            foundText(finding), expectedText(finding));
    }
    auto const columnsOf = [&](PacketRef packet) -> auto const& {
        return index_.streams()[*finding.stream].parts[packet.part].packets;
    };
    auto const stNumAt = [&](PacketRef packet) {
        return columnsOf(packet).stNums()[packet.packet];
    };
    if (!finding.before || stNumAt(finding.before->packet) != stNumAt(finding.place->packet)) {
        return fmt::format("stNum went back from {} to {}: the publisher began anew",
                           expectedText(finding), foundText(finding));
    }
    PacketRef const last = finding.before->packet;
    return fmt::format("sqNum went back from {} to {}, stNum stayed {}: the publisher began anew",
                       columnsOf(last).sqNums()[last.packet], foundText(finding), stNumAt(last));
}

std::string FindingText::repeatedText(Finding const& finding) const {
    return isSv(finding) ? fmt::format("smpCnt {} came again, {} was due", foundText(finding),
                                       expectedText(finding))
                         : fmt::format("{} came again", messageText(finding));
}

std::string FindingText::lateText(Finding const& finding) const {
    return isSv(finding) ? fmt::format("smpCnt {} came late, {} was due", foundText(finding),
                                       expectedText(finding))
                         : fmt::format("{} came late, after stNum {}", messageText(finding),
                                       expectedText(finding));
}

std::string FindingText::ofCounters(Finding const& finding) const {
    switch (finding.kind) {
        case FindingKind::sampleGap:
        case FindingKind::sqNumGap:
        case FindingKind::stateGap:
        case FindingKind::stateStartMissing:
            return gapText(finding);
        case FindingKind::repeated:
            return repeatedText(finding);
        case FindingKind::late:
            return lateText(finding);
        case FindingKind::counterRestart:
            return restartText(finding);
        case FindingKind::replay:
            return fmt::format("{} came again, long after: stNum {} was there already",
                               messageText(finding), expectedText(finding));
        case FindingKind::silent:
            return silentText(finding);
        default:
            return {};
    }
}

/// The names of the channels of a stream, by their numbers in the layout that supervision goes by:
/// the one described, else the one inferred.
std::vector<std::string> const& FindingText::channelNames(std::size_t stream) {
    auto const [known, isNew] = channels_.try_emplace(stream);
    if (!isNew) {
        return known->second;
    }
    TrafficStream const& of = index_.streams()[stream];
    try {
        DescribedSamples const* const described = names_.samplesOf(index_, of, nameOf_);
        auto const given = described != nullptr ? std::optional(described->layout) : std::nullopt;
        for (StreamLayout const& layout : findLayouts(index_, of, given)) {
            if (layout.found.layout && known->second.empty()) {
                known->second = layout.found.layout == given
                                    ? namesOf(described->channels)
                                    : namesOf(meaningsOf(*layout.found.layout));
            }
        }
    } catch (std::system_error const&) {
        known->second.clear();  // numbers say enough
    }
    return known->second;
}

std::string FindingText::nameOf(Finding const& finding) {
    if (!names_.areGiven() || !finding.stream || finding.member.empty()) {
        return {};
    }
    try {
        if (isSv(finding)) {
            if (names_.samplesOf(index_, index_.streams()[*finding.stream], nameOf_) == nullptr) {
                return {};
            }
            auto const& names = channelNames(*finding.stream);
            return finding.member.front() < names.size() ? names[finding.member.front()] : "";
        }
        if (!finding.place) {
            return {};
        }
        return std::string(
            messages_.of(*finding.stream, finding.place->packet).nameAt(finding.member));
    } catch (std::system_error const&) {
        return {};  // its number says enough
    }
}

/// The name in brackets, with the IED where there are several; empty where there is none.
std::string FindingText::nameText(Finding const& finding) {
    std::string const name = nameOf(finding);
    if (name.empty()) {
        return {};
    }
    auto const* const dataSet = names_.dataSetOf(index_.streams()[*finding.stream].key);
    bool const withIed = names_.areOfSeveralIeds() && dataSet != nullptr;
    return fmt::format(" ({}{})", withIed ? dataSet->ied : "", name);
}

/// "channel 1 (Ia)"; from 1, as everywhere.
std::string FindingText::channelText(Finding const& finding) {
    std::size_t const channel = finding.member.front();
    std::string name = nameText(finding);
    if (name.empty()) {
        auto const& names = channelNames(*finding.stream);
        name = channel < names.size() && !names[channel].empty()
                   ? fmt::format(" ({})", names[channel])
                   : "";
    }
    return fmt::format("channel {}{}", channel + 1, name);
}

std::string FindingText::qualityChangeText(Finding const& finding) {
    std::string of;
    if (isSv(finding) && finding.stream && !finding.member.empty()) {
        of = channelText(finding);
    } else {
        of = fmt::format("member {}{}", memberText(finding.member), nameText(finding));
    }
    bool const isFromStart = std::holds_alternative<std::monostate>(finding.expected);
    return isFromStart
               ? fmt::format("quality of {} is {} from the first packet on", of, foundText(finding))
               : fmt::format("quality of {} {}", of, changeText(finding));
}

/// The values of a message, and whether they go with its counters.
std::string FindingText::ofContent(Finding const& finding) {
    switch (finding.kind) {
        case FindingKind::changedWithoutState:
            return fmt::format("data changed, stNum stayed {}", stNumOf(finding));
        case FindingKind::stateWithoutChange:
            return fmt::format("stNum went up to {}, no value or quality changed",
                               stNumOf(finding));
        case FindingKind::timeWithoutState:
            return fmt::format("t {}, stNum stayed {}", changeText(finding), stNumOf(finding));
        case FindingKind::timeUnchanged:
            return fmt::format("stNum went up to {}, t stayed {}", stNumOf(finding),
                               foundText(finding));
        case FindingKind::qualityChanged:
            return qualityChangeText(finding);
        default:
            return {};
    }
}

std::string FindingText::ofCopies(Finding const& finding) const {
    switch (finding.kind) {
        case FindingKind::copyMissing:
            return copyMissingText(finding);
        case FindingKind::copyDiffers:
            return "the two copies of a frame have different contents";
        case FindingKind::copyExtra:
            return fmt::format("a frame came more than once over {}", wayText(finding, false));
        case FindingKind::wrongLan:
            return fmt::format("both copies say {}: one came over the wrong LAN",
                               wayText(finding, false));
        case FindingKind::trailerInvalid:
            return fmt::format("the PRP trailer gives a size of {}, {} would fit",
                               plural(static_cast<std::uint64_t>(numberIn(finding.found)), "octet"),
                               expectedText(finding));
        default:
            return {};
    }
}

std::string FindingText::what(Finding const& finding) {
    // One of them tells the kind, the others are empty.
    return ofCounters(finding) + ofContent(finding) + descriptionText(finding) +
           clockText(finding) + ofCopies(finding) + captureText(finding);
}

Cell valueCell(Finding const& finding, FindingValue const& value) {
    if (std::holds_alternative<std::monostate>(value)) {
        return {};
    }
    if (auto const* const number = std::get_if<std::int64_t>(&value);
        number != nullptr && finding.kind != FindingKind::qualityChanged) {
        return *number;
    }
    if (auto const* const number = std::get_if<double>(&value)) {
        return *number;
    }
    return valueText(finding, value);
}

}  // namespace TalIec61850Tools
