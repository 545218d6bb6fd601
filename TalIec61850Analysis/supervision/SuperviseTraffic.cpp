#include <TalIec61850Analysis/redundancy/PairCopies.hpp>
#include <TalIec61850Analysis/samples/FindRate.hpp>
#include <TalIec61850Analysis/samples/PacketCourse.hpp>
#include <TalIec61850Analysis/samples/PartAttributes.hpp>
#include <TalIec61850Analysis/supervision/CaptureDrops.hpp>
#include <TalIec61850Analysis/supervision/CaptureFindings.hpp>
#include <TalIec61850Analysis/supervision/ClockSteps.hpp>
#include <TalIec61850Analysis/supervision/CoverageEnd.hpp>
#include <TalIec61850Analysis/supervision/FindingJoiner.hpp>
#include <TalIec61850Analysis/supervision/GooseContentReader.hpp>
#include <TalIec61850Analysis/supervision/GooseSupervisor.hpp>
#include <TalIec61850Analysis/supervision/LossWitnesses.hpp>
#include <TalIec61850Analysis/supervision/RedundancyFindings.hpp>
#include <TalIec61850Analysis/supervision/SampleContents.hpp>
#include <TalIec61850Analysis/supervision/SortFindings.hpp>
#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <TalIec61850Analysis/supervision/SvSupervisor.hpp>
#include <TalIec61850Analysis/traffic/GooseCourse.hpp>
#include <TalIec61850Analysis/traffic/StreamWays.hpp>
#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace TalIec61850Analysis {

namespace {

using FileSteps = std::vector<std::vector<detail::ClockStep>>;

/// Packets between two looks at whether to stop.
constexpr std::uint64_t kPatience = 0xFFFF;
constexpr std::uint64_t kMostAtOnce = 0xFFFF;

bool isLoss(FindingKind kind) {
    return kind == FindingKind::sampleGap || kind == FindingKind::sqNumGap ||
           kind == FindingKind::stateGap || kind == FindingKind::stateStartMissing;
}

/// Takes the findings of one stream: gives them their places and causes, and joins them.
class StreamFindings {
public:
    StreamFindings(TrafficIndex const& index, std::size_t stream,
                   detail::LossWitnesses const& witnesses)
        : index_(&index), stream_(stream), witnesses_(&witnesses) {}

    void add(Finding finding) {
        finding.stream = stream_;
        if (finding.place) {
            finding.place = detail::placeOf(*index_, stream_, finding.place->packet);
        }
        if (finding.before) {
            finding.before = detail::placeOf(*index_, stream_, finding.before->packet);
        }
        if (isLoss(finding.kind) && !joiner_.isFlooded(finding.kind, finding.from)) {
            witnesses_->judge(finding);
        }
        joiner_.add(std::move(finding));
    }

    void takeInto(std::vector<Finding>& all) {
        auto findings = joiner_.take();
        std::move(findings.begin(), findings.end(), std::back_inserter(all));
    }

private:
    TrafficIndex const* index_;
    std::size_t stream_;
    detail::LossWitnesses const* witnesses_;
    detail::FindingJoiner joiner_;
};

/// Where a stream is among the steps of the clocks of its files.
class StepsAhead {
public:
    StepsAhead(TrafficStream const& stream, FileSteps const& steps) {
        for (StreamPart const& part : stream.parts) {
            parts_.push_back({.steps = &steps[part.file]});
            isAny_ = isAny_ || !steps[part.file].empty();
        }
    }

    /// Calls with each step that is before a packet.
    /// @param call  void call(std::int64_t step)
    template <typename Call>
    void pass(std::uint32_t part, std::uint64_t frameOffset, Call const& call) {
        if (!isAny_) [[likely]] {
            return;
        }
        Part& at = parts_[part];
        while (at.next < at.steps->size() && (*at.steps)[at.next].fileOffset < frameOffset) {
            call((*at.steps)[at.next].step);
            ++at.next;
        }
    }

private:
    struct Part {
        std::vector<detail::ClockStep> const* steps = nullptr;
        std::size_t next = 0;
    };

    std::vector<Part> parts_;
    bool isAny_ = false;
};

std::int32_t sequenceOf(PacketFlags flags, std::uint16_t sequence) {
    bool const isAny = flags.redundancy() != Redundancy::none || flags.isTrailerMisfit();
    return isAny ? std::int32_t{sequence} : detail::kNoSequence;
}

/// The columns of a part, where they are.
struct SvColumns {
    explicit SvColumns(PacketColumns const& packets)
        : times(packets.times().data()),
          offsets(packets.frameOffsets().data()),
          smpCnts(packets.smpCnts().data()),
          smpSynchs(packets.smpSynchs().data()),
          asdus(packets.asdus().data()),
          sequences(packets.redundancySequences().data()),
          flags(packets.flags().data()) {}

    [[nodiscard]] detail::SvObservation observe(std::uint32_t part, std::uint32_t packet,
                                                detail::StreamWays const& ways) const {
        PacketFlags const its = flags[packet];
        return {.arrival = times[packet],
                .packet = {.part = part, .packet = packet},
                .smpCnt = smpCnts[packet],
                .way = ways.wayOf(part, its),
                .asdu = asdus[packet],
                .smpSynch = its.secondCounter() == CounterState::held
                                ? std::int16_t{smpSynchs[packet]}
                                : detail::SvObservation::kNoSynch,
                .sequence = sequenceOf(its, sequences[packet]),
                .isCounted = its.firstCounter() == CounterState::held};
    }

    std::int64_t const* times;
    std::uint64_t const* offsets;
    std::uint32_t const* smpCnts;
    std::uint8_t const* smpSynchs;
    std::uint16_t const* asdus;
    std::uint16_t const* sequences;
    PacketFlags const* flags;
};

/// Samples of a stream in one of its frames.
std::uint32_t samplesInFrame(TrafficStream const& stream) {
    constexpr std::size_t kFrames = 64;
    auto const offsets = stream.parts.front().packets.frameOffsets();
    std::uint32_t most = 1;
    std::uint32_t count = 1;
    std::size_t frames = 0;
    for (std::size_t i = 1; i < offsets.size() && frames < kFrames; ++i) {
        bool const isSame = offsets[i] == offsets[i - 1];
        count = isSame ? count + 1 : 1;
        frames += isSame ? 0 : 1;
        most = std::max(most, count);
    }
    return most;
}

detail::SvCourse courseOf(detail::FoundRate const& found, std::uint32_t inFrame, bool isRedundant) {
    return {.count = found.countRule(),
            .rate = found.rate,
            .inFrame = inFrame,
            .isRedundant = isRedundant};
}

/// Goes through one SV stream.
void superviseSv(TrafficIndex const& index, std::size_t number, FileSteps const& steps,
                 SupervisionOptions const& options, std::int64_t end, StreamFindings& findings) {
    TrafficStream const& stream = index.streams()[number];
    detail::StreamWays const ways(stream);
    detail::PartAttributes attributes(index, stream);
    StepsAhead ahead(stream, steps);
    std::vector<SvColumns> columns;
    for (StreamPart const& part : stream.parts) {
        columns.emplace_back(part.packets);
    }
    std::uint32_t const inFrame = samplesInFrame(stream);
    detail::SvSupervisor supervisor(options.jitter);
    auto const take = [&](Finding const& finding) { findings.add(finding); };

    detail::PacketCourse course(stream);
    // Two taps at once would tell another rate.
    std::vector<bool> const isOfRate = ways.areOfFirstTap();
    bool const isOneTap = std::all_of(isOfRate.begin(), isOfRate.end(), [](bool is) { return is; });
    detail::PacketCourse rateCourse(stream, isOfRate);
    detail::FoundRate found;
    std::uint64_t ofRate = 0;
    while (!options.stop.stop_requested()) {
        bool const isNewRate = ofRate == found.packets;
        if (isNewRate) {
            found = detail::findRate(index, stream, isOneTap ? course : rateCourse, {});
            ofRate = 0;
        }
        // After the last packet of the first tap, its last rate goes on.
        std::uint64_t const left = found.packets > 0 ? found.packets - ofRate : kMostAtOnce;
        detail::PacketCourse::Strip const strip = course.nextStrip(std::min(left, kMostAtOnce));
        if (strip.count == 0) {
            break;
        }
        std::uint32_t const part = strip.first.part;
        if (isOfRate[part]) {
            ofRate += strip.count;
            for (std::uint32_t i = 0; !isOneTap && i < strip.count; ++i) {
                static_cast<void>(rateCourse.next());
            }
        }
        SvColumns const& at = columns[part];
        for (std::uint32_t packet = strip.first.packet; packet < strip.first.packet + strip.count;
             ++packet) {
            detail::SvObservation const observation = at.observe(part, packet, ways);
            ahead.pass(part, at.offsets[packet],
                       [&](std::int64_t step) { supervisor.stepClock(step, take); });
            if (packet == strip.first.packet) {
                if (isNewRate) {
                    supervisor.follow(courseOf(found, inFrame, ways.areSeveral()), observation,
                                      take);
                }
                // They are those of the whole strip.
                if (attributes.isChangedAt(strip.first)) {
                    supervisor.describe(attributes.at(strip.first), observation, take);
                }
            }
            supervisor.add(observation, take);
        }
    }
    if (options.stop.stop_requested()) {
        return;
    }
    supervisor.finish(end, take);
}

/// Watches all GOOSE streams at once, so that each capture is read front to back.
class GooseWatch {
public:
    GooseWatch(TrafficIndex const& index, FileSteps const& steps,
               std::vector<StreamFindings>& findings)
        : index_(index), findings_(findings), window_(index) {
        for (TrafficStream const& stream : index.streams()) {
            if (stream.key.protocol == StreamProtocol::goose) {
                streams_.push_back(
                    {.ways = detail::StreamWays(stream), .ahead = StepsAhead(stream, steps)});
            } else {
                streams_.push_back({.ways = detail::StreamWays({}), .ahead = StepsAhead({}, {})});
            }
        }
    }

    void run(SupervisionOptions const& options) {
        detail::GooseCourse course(index_);
        for (std::uint64_t seen = 0; auto const message = course.next(); ++seen) {
            if ((seen & kPatience) == 0 && options.stop.stop_requested()) {
                return;
            }
            take(*message);
        }
    }

    void finish(std::size_t stream, std::int64_t end) {
        streams_[stream].supervisor.finish(
            end, [&](Finding const& finding) { findings_[stream].add(finding); });
    }

private:
    struct Stream {
        detail::StreamWays ways;
        StepsAhead ahead;
        detail::GooseSupervisor supervisor = {};
        detail::GooseContentReader reader = {};
        bool hasContent = false;
    };

    void take(detail::CourseMessage const& message) {
        Stream& at = streams_[message.stream];
        StreamPart const& part = index_.streams()[message.stream].parts[message.packet.part];
        PacketColumns const& packets = part.packets;
        std::size_t const packet = message.packet.packet;
        PacketFlags const flags = packets.flags()[packet];
        std::uint64_t const frameOffset = packets.frameOffsets()[packet];
        detail::GooseObservation observation{
            .arrival = packets.times()[packet],
            .packet = message.packet,
            .stNum = packets.stNums()[packet],
            .sqNum = packets.sqNums()[packet],
            .way = at.ways.wayOf(message.packet.part, flags),
            .sequence = sequenceOf(flags, packets.redundancySequences()[packet]),
            .isCounted = flags.firstCounter() == CounterState::held &&
                         flags.secondCounter() == CounterState::held,
            .isSimulated = flags.isSimulated()};
        // What a snap length cut off, nobody knows.
        if (!flags.isCut()) {
            bool const isSame =
                at.reader.read(window_, part.file, frameOffset + packets.pduOffsets()[packet]);
            observation.isSame = isSame && at.hasContent;
            observation.content = &at.reader.content();
        }
        at.hasContent = !flags.isCut();
        at.ahead.pass(message.packet.part, frameOffset,
                      [&](std::int64_t step) { at.supervisor.stepClock(step); });
        at.supervisor.add(observation,
                          [&](Finding const& finding) { findings_[message.stream].add(finding); });
    }

    TrafficIndex const& index_;
    std::vector<StreamFindings>& findings_;
    detail::CaptureWindow window_;
    std::vector<Stream> streams_;
};

}  // namespace

void superviseTraffic(TrafficIndex const& index, SupervisionOptions const& options,
                      FindingSink sink) {
    auto const drops = detail::findCaptureDrops(index, options.stop);
    FileSteps const steps = detail::findClockSteps(index);
    detail::LossWitnesses const witnesses(index, drops);
    detail::CoverageEnd const coverage(index, steps);
    std::vector<StreamFindings> findings;
    for (std::size_t stream = 0; stream < index.streams().size(); ++stream) {
        findings.emplace_back(index, stream, witnesses);
    }
    GooseWatch goose(index, steps, findings);
    goose.run(options);
    for (std::size_t stream = 0; stream < index.streams().size(); ++stream) {
        std::int64_t const end = coverage.of(index.streams()[stream]);
        if (index.streams()[stream].key.protocol == StreamProtocol::sv) {
            superviseSv(index, stream, steps, options, end, findings[stream]);
            if (options.withSamples) {
                detail::superviseSamples(index, stream, options.stop, [&](Finding const& finding) {
                    findings[stream].add(finding);
                });
            }
        } else {
            goose.finish(stream, end);
        }
    }
    static_cast<void>(
        pairCopies(index, {.window = {}, .stop = options.stop}, [&](RedundancyFault const& fault) {
            findings[fault.stream].add(detail::findingOf(index, fault));
        }));
    if (options.stop.stop_requested()) {
        return;
    }
    std::vector<Finding> all;
    for (StreamFindings& each : findings) {
        each.takeInto(all);
    }
    detail::addCaptureGaps(all);
    detail::addClockSteps(index, steps, all);
    detail::addDrops(drops, all);
    detail::addUnread(index, all);
    detail::addSharedNames(index, all);
    for (Finding const& finding : detail::sortedByTime(std::move(all))) {
        sink(finding);
    }
}

}  // namespace TalIec61850Analysis
