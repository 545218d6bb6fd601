#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/packet/Sink.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace TalIec61850Analysis {

/// What can be found wrong, or worth a note, in the course of traffic.
enum class FindingKind : std::uint8_t {
    // Counters.
    sampleGap,          ///< SV samples are missing
    repeated,           ///< a packet came again, and is no copy over another way
    late,               ///< a packet came after later ones
    counterRestart,     ///< a counter goes on elsewhere
    replay,             ///< GOOSE: an older packet came again
    sqNumGap,           ///< GOOSE: messages of a state are missing
    stateGap,           ///< GOOSE: whole states are missing
    stateStartMissing,  ///< GOOSE: the first messages of a state are missing
    twoPublishers,      ///< two send under one name

    // The contents of GOOSE, against its counters.
    changedWithoutState,  ///< data change, stNum does not
    stateWithoutChange,   ///< stNum is raised, data stay the same
    timeWithoutState,     ///< t changes, stNum does not
    timeUnchanged,        ///< stNum is raised, t stays the same

    // Time.
    expired,                   ///< GOOSE: timeAllowedtoLive ran out
    timeAllowedtoLiveZero,     ///< GOOSE: the time is 0
    timeAllowedtoLiveChanged,  ///< GOOSE: the time is another
    silent,                    ///< SV: nothing came for long, and nothing is missing
    jitter,                    ///< SV: arrival is away from its even course
    timeAhead,                 ///< GOOSE: t is later than arrival

    // What a stream says of itself.
    confRevChanged,         ///< another revision of the configuration
    dataSetChanged,         ///< another data set, or another make of its members
    rateChanged,            ///< SV: another rate of samples
    grandmasterChanged,     ///< SV: another clock
    simulationBegan,        ///< packets are simulated from here on
    simulationEnded,        ///< they are not any more
    simulationContradicts,  ///< GOOSE: simulation of the PDU and of the header differ
    needsCommissioning,     ///< GOOSE: ndsCom is set
    entriesDiffer,          ///< GOOSE: numDatSetEntries is not the number of members
    synchLost,              ///< SV: smpSynch falls
    synchRegained,          ///< SV: smpSynch rises
    clockFailure,           ///< a time stamp says that its clock failed
    clockNotSynchronized,   ///< a time stamp says that its clock is not synchronized
    qualityChanged,         ///< the quality of a value leaves good, or is good again

    // Redundancy.
    copyMissing,     ///< a frame came over one of two ways
    copyDiffers,     ///< two copies have other contents
    copyExtra,       ///< more than one copy over one way
    wrongLan,        ///< a copy says that it is of the other LAN
    trailerInvalid,  ///< a PRP trailer has a size that does not fit

    // The capture.
    captureGap,        ///< all streams pause, and all lack what should have come
    captureDropped,    ///< the capture says that it lost packets
    clockStep,         ///< the clock of the capture was set
    recordsCut,        ///< frames were cut by a snap length
    fileEndsInRecord,  ///< the file ends inside a record
    unreadable,        ///< a GOOSE or SV frame cannot be read
};

/// How bad a finding is.
enum class Severity : std::uint8_t { note, warning, error };

/// Who lost what is missing.
enum class LossCause : std::uint8_t {
    none,       ///< nothing is missing
    unknown,    ///< nothing tells
    capture,    ///< the packets may have been on the network; the capture lacks them
    network,    ///< they were lost between publisher and capture
    publisher,  ///< they were never sent
};

/// What tells the cause.
enum class LossWitness : std::uint8_t {
    none,               ///< nothing does
    dropCounts,         ///< the capture's own counts of dropped packets
    otherStreamsLost,   ///< all streams that should have sent meanwhile lost packets too
    otherStreamsRanOn,  ///< packets of other streams came meanwhile, in sequence
    redundancyGap,      ///< the redundancy numbers of the source have a gap, others do not
    redundancyRanOn,    ///< the redundancy numbers of the source have no gap
    otherCopy,          ///< the copy over the other LAN or lane is there
};

/// A value that was expected or found.
using FindingValue = std::variant<std::monostate, std::int64_t, double, OctetString, CaptureTime>;

/// A packet, or another place in a capture.
struct FindingPlace {
    /// The number of the file in the index.
    std::uint32_t file = 0;
    /// Of the PDU, or of what else is meant, in octets from the start of the file.
    std::uint64_t fileOffset = 0;
    /// The packet of the stream; of a finding without a stream, the first one.
    PacketRef packet;
    /// When it was captured, in nanoseconds since 1970, or kNoTime.
    std::int64_t time = kNoTime;

    /// Member by member.
    friend bool operator==(FindingPlace const&, FindingPlace const&) = default;
};

/// One thing that was found.
struct Finding {
    /// What it is.
    FindingKind kind = FindingKind::sampleGap;
    /// GOOSE or SV; not set where a finding is of the whole capture.
    std::optional<StreamProtocol> protocol;
    /// The number of the stream in the index; not set where it is of none.
    std::optional<std::size_t> stream;
    /// When it began, in nanoseconds since 1970, or kNoTime. Of something that is missing: when the
    /// next packet came, or the captures ended; the pause began with `before`.
    std::int64_t from = kNoTime;
    /// When it was met last, likewise.
    std::int64_t until = kNoTime;
    /// How often it was met from `from` until `until`.
    std::uint64_t count = 1;
    /// How many samples, messages or states are missing, at least.
    std::uint64_t lost = 0;
    /// What should have come, or what was before.
    FindingValue expected;
    /// What came.
    FindingValue found;
    /// Who lost what is missing; of copyMissing, who lost the copy.
    LossCause cause = LossCause::none;
    /// What tells the cause.
    LossWitness witness = LossWitness::none;
    /// How many frames say so; for counts of dropped packets, these.
    std::uint64_t witnessFrames = 0;
    /// The packet that shows it; not set at the end of the captures.
    std::optional<FindingPlace> place;
    /// The packet of the stream before it; of twoPublishers that have two addresses, the first one
    /// of the other stream.
    std::optional<FindingPlace> before;
    /// Of qualityChanged: the member by its index, then by those inside it; of SV, the channel.
    std::vector<std::uint32_t> member;
    /// Of unreadable: why.
    std::optional<UnreadReason> reason;

    /// How bad it is: by the kind. A quality that leaves good is a warning in SV alone.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT Severity severity() const noexcept;

    /// Member by member.
    friend bool operator==(Finding const&, Finding const&) = default;
};

/// Takes findings without a list of them.
using FindingSink = Sink<Finding>;

/// How bad a finding of a kind is, at most.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT Severity severityOf(FindingKind kind) noexcept;

}  // namespace TalIec61850Analysis
