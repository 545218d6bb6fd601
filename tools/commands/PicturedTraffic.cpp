#include "tools/commands/PicturedTraffic.hpp"

#include <algorithm>
#include <system_error>

#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/output/OutputError.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/Cells.hpp"
#include "tools/selection/RedundancyRow.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::EventOptions;
using TalIec61850Analysis::Finding;
using TalIec61850Analysis::FindingSink;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::StreamKey;
using TalIec61850Analysis::StreamPart;
using TalIec61850Analysis::StreamSummarySink;
using TalIec61850Analysis::SupervisionOptions;
using TalIec61850Analysis::TrafficStream;

namespace {

/// Names of both protocols select of each what is called so: no stream has both.
CriteriaOfBoth criteriaOfBoth(PacketCriteria const& criteria) {
    CriteriaOfBoth both{.goose = criteria, .sv = criteria};
    if (!criteria.svIDs.empty() && (!criteria.gocbRefs.empty() || !criteria.goIDs.empty())) {
        both.goose.svIDs.clear();
        both.sv.gocbRefs.clear();
        both.sv.goIDs.clear();
    }
    return both;
}

}  // namespace

PicturedTraffic::PicturedTraffic(CommandRun& run, SampleChoice const& choice)
    : run_(run),
      choice_(choice),
      described_(run, choice.common),
      asked_(described_.asking(choice.criteria)),
      criteria_(criteriaOfBoth(asked_)),
      // Streams that are not selected tell who lost packets.
      index_(indexByOneClock(run, {}, choice.common.jobs, described_.publishers())),
      window_(choice.window.resolve(spanOf(index_))),
      messages_(index_, described_, nameOfFile()) {
    reportFaults(run, index_);
    for (auto const& capture : run.captures()) {
        files_.push_back(capture.name);
    }
    for (TrafficStream const& stream : index_.streams()) {
        areWanted_.push_back(
            TalIec61850Tools::isWanted(index_, stream, criteria_.of(stream.key.protocol)));
    }
    for (TrafficStream const& stream : index_.streams()) {
        ++namesakes_[{stream.key.protocol, stream.key.name}];
    }
    described_.look(index_);
    names_.streamName = [this](TrafficStream const& stream) { return nameOf(stream); };
    names_.memberName = [this](TrafficStream const& stream,
                               std::vector<std::uint32_t> const& member) {
        return nameOf(stream, member);
    };
    CaptureSpan const span = spanOf(index_);
    from_ = nanosecondsOf(window_.from.value_or(span.begin));
    to_ = std::max(
        from_,
        nanosecondsOf(window_.to && *window_.to != CaptureTime::max() ? *window_.to : span.end));
}

std::function<std::string_view(std::uint32_t)> PicturedTraffic::nameOfFile() const {
    return [this](std::uint32_t file) -> std::string_view { return run_.captures()[file].name; };
}

bool PicturedTraffic::isWanted(StreamKey const& key) const {
    return areWanted_[static_cast<std::size_t>(index_.find(key) - index_.streams().data())];
}

std::vector<std::size_t> PicturedTraffic::wanted(Protocol protocol) const {
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < areWanted_.size(); ++i) {
        if (areWanted_[i] && index_.streams()[i].key.protocol == protocol) {
            numbers.push_back(i);
        }
    }
    return numbers;
}

void PicturedTraffic::noteIfNone() const {
    if (std::none_of(areWanted_.begin(), areWanted_.end(), [](bool is) { return is; })) {
        noteNoStreams(run_, index_, asked_, choice_.common.jobs);
    } else if (!hasPacketsInWindow()) {
        noteOtherTimes(run_, collectRows(index_, asked_));
    }
}

bool PicturedTraffic::hasPacketsInWindow() const {
    auto const& streams = index_.streams();
    for (std::size_t number = 0; number < streams.size(); ++number) {
        for (StreamPart const& part : streams[number].parts) {
            auto const places = part.packets.placesIn(window_);
            if (areWanted_[number] && places.first != places.second) {
                return true;
            }
        }
    }
    return false;
}

PicturedSamples PicturedTraffic::samplesOf(TrafficStream const& stream) {
    PicturedSamples samples;
    samples.options.from = window_.from;
    if (window_.to && *window_.to != CaptureTime::max()) {
        samples.options.end = captureTimeOf(afterTime(nanosecondsOf(*window_.to)));
    }
    attempt([&] {
        samples.described = choice_.layout ? described_.samplesOf(stream.key)
                                           : described_.samplesOf(index_, stream, nameOfFile());
    });
    samples.options.layout = choice_.layout;
    if (!choice_.layout && samples.described != nullptr) {
        samples.options.layout = samples.described->layout;
    }
    samples.options.rate = choice_.rate;
    for (std::size_t const channel : choice_.channels) {
        samples.channels.push_back(channel - 1);
    }
    return samples;
}

bool PicturedTraffic::isWanted(SampleBlock const& block) const {
    return block.attributes == nullptr ||
           criteria_.of(Protocol::sv).admitAttributes(*block.attributes);
}

EventOptions PicturedTraffic::events() const {
    EventOptions events;
    events.takes = [this](StreamKey const& key) { return isWanted(key); };
    events.window = window_;
    return events;
}

void PicturedTraffic::supervise(FindingSink take) {
    attempt([&] {
        superviseTraffic(index_, supervision(), [&](Finding const& finding) {
            if (isWanted(finding)) {
                take(finding);
            }
        });
    });
}

void PicturedTraffic::supervise(FindingSink take, StreamSummarySink tell) {
    auto const takeWanted = [&](Finding const& finding) {
        if (isWanted(finding)) {
            take(finding);
        }
    };
    attempt([&] { superviseTraffic(index_, supervision(), takeWanted, tell); });
}

void PicturedTraffic::attempt(std::function<void()> const& step) {
    try {
        step();
    } catch (OutputError const&) {
        throw;
    } catch (std::system_error const& error) {
        run_.complainOf(nameOfAll(run_.captures()), faultText(error.code()));
    }
}

bool PicturedTraffic::areStreamsSelected() const { return asked_ != PacketCriteria(); }

bool PicturedTraffic::isWanted(Finding const& finding) const {
    if (!finding.stream && areStreamsSelected()) {
        return false;
    }
    return finding.from == kNoTime ? !window_.from && !window_.to
                                   : window_.contains(captureTimeOf(finding.from));
}

SupervisionOptions PicturedTraffic::supervision() {
    SupervisionOptions supervision;
    supervision.withSamples = true;
    supervision.layoutOf = described_.layouts(index_, nameOfFile());
    supervision.jobs = choice_.common.jobs;
    if (areStreamsSelected()) {
        supervision.watches = [this](StreamKey const& key) { return isWanted(key); };
    }
    return supervision;
}

std::string PicturedTraffic::nameOf(TrafficStream const& stream) const {
    auto const& key = stream.key;
    auto const namesakes = namesakes_.find({key.protocol, key.name});
    if (namesakes == namesakes_.end() || namesakes->second < 2 || !key.source) {
        return key.name;
    }
    return key.name + " from " + tableText(addressCell(key.source));
}

/// By the first message of a stream: the lanes of a picture are those of one data set.
std::string PicturedTraffic::nameOf(TrafficStream const& stream,
                                    std::vector<std::uint32_t> const& member) {
    auto const number = static_cast<std::size_t>(&stream - index_.streams().data());
    auto known = members_.find(number);
    if (known == members_.end()) {
        known = members_.try_emplace(number).first;
        attempt([&] { known->second = messages_.of(number, {}); });
    }
    return std::string(known->second.nameAt(member));
}

}  // namespace TalIec61850Tools
