#include <TalIec61850Analysis/redundancy/PairCopies.hpp>
#include <TalIec61850Analysis/samples/FindRate.hpp>
#include <TalIec61850Analysis/samples/PacketCourse.hpp>
#include <TalIec61850Analysis/samples/PartAttributes.hpp>
#include <TalIec61850Analysis/samples/SamplesInFrame.hpp>
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
#include <TalIec61850Analysis/supervision/StreamTally.hpp>
#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <TalIec61850Analysis/supervision/SvSupervisor.hpp>
#include <TalIec61850Analysis/traffic/GooseCourse.hpp>
#include <TalIec61850Analysis/traffic/RunJobs.hpp>
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
                   detail::LossWitnesses const& witnesses, detail::CoverageEnd const& coverage)
        : index_(&index), stream_(stream), witnesses_(&witnesses), coverage_(&coverage) {}

    /// From here on, findings are counted too.
    void tally() { tally_.emplace(*index_, stream_); }
    /// What is counted of the stream; null where nothing is.
    [[nodiscard]] detail::StreamTally* tallied() { return tally_ ? &*tally_ : nullptr; }

    void add(Finding finding) {
        finding.stream = stream_;
        if (finding.place) {
            finding.place = detail::placeOf(*index_, stream_, finding.place->packet);
        }
        if (finding.before) {
            finding.before = detail::placeOf(*index_, stream_, finding.before->packet);
        }
        bool const isSilence =
            finding.kind == FindingKind::silent && finding.place && finding.before;
        if (isSilence && coverage_->isHoleBetween(finding.before->time, finding.place->time)) {
            return;  // nobody listened
        }
        if (isLoss(finding.kind) && finding.lost > 0 &&
            !joiner_.isFlooded(finding.kind, finding.from)) {
            witnesses_->judge(finding);
        }
        if (tally_) {
            tally_->add(finding);
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
    detail::CoverageEnd const* coverage_;
    detail::FindingJoiner joiner_;
    std::optional<detail::StreamTally> tally_;
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
          smpSynchs(packets.smpSynchs()),
          asdus(packets.asdus()),
          sequences(packets.redundancySequences()),
          flags(packets.flags()) {}

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
    ColumnView<std::uint8_t> smpSynchs;
    ColumnView<std::uint16_t> asdus;
    ColumnView<std::uint16_t> sequences;
    ColumnView<PacketFlags> flags;
};

detail::SvCourse courseOf(detail::FoundRate const& found, std::uint32_t inFrame, bool isRedundant) {
    return {.count = found.countRule(),
            .rate = found.rate,
            .inFrame = inFrame,
            .isRedundant = isRedundant};
}

/// Counts what a strip has; all of it has one smpSynch.
void tallyStrip(detail::StreamTally& tally, SvColumns const& at,
                detail::PacketCourse::Strip const& strip, bool isStepped) {
    if (isStepped) {
        tally.forgetArrival();
    }
    tally.addArrivals({at.times + strip.first.packet, strip.count});
    if (at.flags[strip.first.packet].secondCounter() == CounterState::held) {
        tally.addSynch(at.smpSynchs[strip.first.packet]);
    }
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
    std::uint32_t const inFrame = detail::samplesInFrame(stream);
    detail::StreamTally* const tally = findings.tallied();
    // Of fewer frames, no jitter is told.
    constexpr std::uint64_t kFewest = 16;
    std::optional<detail::Histogram> distances;
    if (tally != nullptr && stream.packets >= kFewest) {
        distances.emplace();
    }
    detail::SvSupervisor supervisor(options.jitter, distances ? &*distances : nullptr);
    auto const take = [&](Finding const& finding) { findings.add(finding); };
    bool isStepped = false;
    auto const step = [&](std::int64_t by) {
        supervisor.stepClock(by, take);
        isStepped = true;
    };

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
            ahead.pass(part, at.offsets[packet], step);
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
        if (tally != nullptr) {
            tallyStrip(*tally, at, strip, std::exchange(isStepped, false));
        }
    }
    if (options.stop.stop_requested()) {
        return;
    }
    supervisor.finish(end, take);
    if (tally != nullptr) {
        tally->setMeasuredRate(supervisor.measuredRate());
        tally->leaveOutCopies(supervisor.copies());
    }
    if (distances) {
        tally->addJitter(*distances);
    }
}

/// Watches some GOOSE streams at once, so that each capture is read front to back.
class GooseWatch {
public:
    /// @param watched  by stream
    GooseWatch(TrafficIndex const& index, FileSteps const& steps, std::vector<bool> watched,
               std::vector<StreamFindings>& findings)
        : index_(index),
          watched_(std::move(watched)),
          findings_(findings),
          window_(index),
          places_(watched_.size()) {
        for (std::size_t number = 0; number < watched_.size(); ++number) {
            if (watched_[number]) {
                TrafficStream const& stream = index.streams()[number];
                places_[number] = streams_.size();
                streams_.push_back(
                    {.ways = detail::StreamWays(stream), .ahead = StepsAhead(stream, steps)});
            }
        }
    }

    void run(SupervisionOptions const& options) {
        detail::GooseCourse course(index_, watched_);
        for (std::uint64_t seen = 0; auto const message = course.next(); ++seen) {
            if ((seen & kPatience) == 0 && options.stop.stop_requested()) {
                return;
            }
            take(*message);
        }
    }

    void finish(std::size_t stream, std::int64_t end) {
        detail::GooseSupervisor& supervisor = streamAt(stream).supervisor;
        supervisor.finish(end, [&](Finding const& finding) { findings_[stream].add(finding); });
        if (detail::StreamTally* const tally = findings_[stream].tallied()) {
            tally->setStates(supervisor.states());
            tally->leaveOutCopies(supervisor.copies());
        }
    }

private:
    struct Stream {
        detail::StreamWays ways;
        StepsAhead ahead;
        detail::GooseSupervisor supervisor = {};
        detail::GooseContentReader reader = {};
        bool hasContent = false;
    };

    [[nodiscard]] Stream& streamAt(std::size_t stream) { return streams_[places_[stream]]; }

    void take(detail::CourseMessage const& message) {
        Stream& at = streamAt(message.stream);
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
        StreamFindings& findings = findings_[message.stream];
        detail::StreamTally* const tally = findings.tallied();
        at.ahead.pass(message.packet.part, frameOffset, [&](std::int64_t step) {
            at.supervisor.stepClock(step);
            if (tally != nullptr) {
                tally->forgetArrival();
            }
        });
        at.supervisor.add(observation, [&](Finding const& finding) { findings.add(finding); });
        if (tally != nullptr) {
            auto const* const content = observation.content;
            tally->addMessage(observation,
                              content != nullptr ? content->timeAllowedtoLive : std::nullopt);
        }
    }

    TrafficIndex const& index_;
    std::vector<bool> watched_;
    std::vector<StreamFindings>& findings_;
    detail::CaptureWindow window_;
    /// By stream of the index: where it is among these.
    std::vector<std::size_t> places_;
    std::vector<Stream> streams_;
};

/// Supervises the streams of an index that are watched.
class TrafficWatch {
public:
    TrafficWatch(TrafficIndex const& index, SupervisionOptions const& options, bool withTallies)
        : index_(index),
          options_(options),
          drops_(detail::findCaptureDrops(index, options.stop)),
          steps_(detail::findClockSteps(index)),
          witnesses_(index, drops_),
          coverage_(index, steps_),
          ofSamples_(index.streams().size()) {
        // Counts of interfaces are compared with all that is missing.
        bool const areAllGoneThrough = detail::haveStatistics(drops_);
        for (std::size_t stream = 0; stream < index.streams().size(); ++stream) {
            bool const isWatched = !options.watches || options.watches(index.streams()[stream].key);
            watched_.push_back(isWatched);
            findings_.emplace_back(index, stream, witnesses_, coverage_);
            if (withTallies && isWatched) {
                findings_.back().tally();
            }
            if (isWatched || areAllGoneThrough) {
                (isSv(stream) ? svStreams_ : gooseStreams_).push_back(stream);
            }
        }
        if (options.withSamples && options.layoutOf) {
            layouts_.resize(index.streams().size());
            for (std::size_t const stream : svStreams_) {
                layouts_[stream] = options.layoutOf(index.streams()[stream].key);
            }
        }
    }

    /// Goes through the streams.
    void run() {
        // Samples first, as they take longest: each task reads the captures for its share of the
        // streams.
        std::size_t const goose = detail::countJobs(gooseStreams_.size(), options_.jobs);
        std::size_t const samples =
            options_.withSamples ? detail::countJobs(svStreams_.size(), options_.jobs) : 0;
        std::size_t const shares = goose + samples;
        detail::runJobs(svStreams_.size() + shares, options_.jobs, [&](std::size_t task) {
            if (task < goose) {
                superviseGoose(shareOf(gooseStreams_, task, goose));
            } else if (task < shares) {
                superviseContents(shareOf(svStreams_, task - goose, samples));
            } else {
                superviseSvStream(svStreams_[task - shares]);
            }
        });
        for (std::size_t const stream : svStreams_) {
            for (Finding const& finding : ofSamples_[stream].take()) {
                findings_[stream].add(finding);
            }
        }
        static_cast<void>(pairCopies(
            index_, {.window = {}, .stop = options_.stop}, [&](RedundancyFault const& fault) {
                findings_[fault.stream].add(detail::findingOf(index_, fault));
            }));
    }

    /// All that is found, in the order of time.
    [[nodiscard]] std::vector<Finding> takeFindings() {
        std::vector<Finding> all;
        for (StreamFindings& each : findings_) {
            each.takeInto(all);
        }
        detail::judgeByStatistics(index_, drops_, all);
        std::erase_if(all, [&](Finding const& finding) { return !watched_[*finding.stream]; });
        detail::addCaptureGaps(index_, all);
        detail::addClockSteps(index_, steps_, all);
        detail::addDrops(drops_, all);
        detail::addUnread(index_, all);
        std::vector<Finding> shared;
        detail::addSharedNames(index_, shared);
        std::copy_if(shared.begin(), shared.end(), std::back_inserter(all),
                     [&](Finding const& finding) { return watched_[*finding.stream]; });
        return detail::sortedByTime(std::move(all));
    }

    /// The streams in figures.
    /// @param found  all that is found
    [[nodiscard]] std::vector<StreamSummary> summaries(std::vector<Finding> const& found) {
        std::vector<StreamSummary> summaries;
        std::vector<std::size_t> places(findings_.size());
        for (std::size_t stream = 0; stream < findings_.size(); ++stream) {
            if (detail::StreamTally const* const tally = findings_[stream].tallied()) {
                places[stream] = summaries.size();
                summaries.push_back(tally->summary());
            }
        }
        for (Finding const& finding : found) {
            if (finding.stream) {
                StreamSummary& summary = summaries[places[*finding.stream]];
                Severity const severity = finding.severity();
                ++(severity == Severity::error     ? summary.errors
                   : severity == Severity::warning ? summary.warnings
                                                   : summary.notes);
            }
        }
        return summaries;
    }

private:
    [[nodiscard]] bool isSv(std::size_t stream) const {
        return index_.streams()[stream].key.protocol == StreamProtocol::sv;
    }

    /// Every so manieth stream.
    [[nodiscard]] static std::vector<std::size_t> shareOf(std::vector<std::size_t> const& streams,
                                                          std::size_t first, std::size_t shares) {
        std::vector<std::size_t> share;
        for (std::size_t i = first; i < streams.size(); i += shares) {
            share.push_back(streams[i]);
        }
        return share;
    }

    void superviseGoose(std::vector<std::size_t> const& streams) {
        std::vector<bool> watched(findings_.size());
        for (std::size_t const stream : streams) {
            watched[stream] = true;
        }
        GooseWatch goose(index_, steps_, std::move(watched), findings_);
        goose.run(options_);
        for (std::size_t const stream : streams) {
            goose.finish(stream, coverage_.of(index_.streams()[stream]));
        }
    }

    void superviseSvStream(std::size_t stream) {
        StreamFindings& findings = findings_[stream];
        superviseSv(index_, stream, steps_, options_, coverage_.of(index_.streams()[stream]),
                    findings);
    }

    void superviseContents(std::vector<std::size_t> const& streams) {
        detail::superviseSamples(
            index_, streams, layouts_, options_.stop,
            [&](std::size_t stream, Finding const& finding) { ofSamples_[stream].add(finding); });
    }

    TrafficIndex const& index_;
    SupervisionOptions const& options_;
    std::vector<detail::CaptureDrop> drops_;
    FileSteps steps_;
    detail::LossWitnesses witnesses_;
    detail::CoverageEnd coverage_;
    // By stream.
    std::vector<bool> watched_;
    /// Each is written by one thread.
    std::vector<StreamFindings> findings_;
    // Those that are gone through.
    std::vector<std::size_t> svStreams_;
    std::vector<std::size_t> gooseStreams_;
    /// By stream, what its samples are described as; empty where nothing is.
    std::vector<std::optional<SampleLayout>> layouts_;
    /// By stream, what its samples tell; each is written by one thread.
    std::vector<detail::FindingJoiner> ofSamples_;
};

}  // namespace

void superviseTraffic(TrafficIndex const& index, SupervisionOptions const& options,
                      FindingSink sink) {
    TrafficWatch watch(index, options, false);
    watch.run();
    if (options.stop.stop_requested()) {
        return;
    }
    for (Finding const& finding : watch.takeFindings()) {
        sink(finding);
    }
}

void superviseTraffic(TrafficIndex const& index, SupervisionOptions const& options,
                      FindingSink sink, StreamSummarySink summaries) {
    TrafficWatch watch(index, options, true);
    watch.run();
    if (options.stop.stop_requested()) {
        return;
    }
    std::vector<Finding> const findings = watch.takeFindings();
    for (Finding const& finding : findings) {
        sink(finding);
    }
    for (StreamSummary const& summary : watch.summaries(findings)) {
        summaries(summary);
    }
}

}  // namespace TalIec61850Analysis
