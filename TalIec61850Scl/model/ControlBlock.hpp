#pragma once

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Scl/model/Diagnostic.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Scl {

/// Where a control block sends to. What the description does not say, or says in a way that cannot
/// be read, is not set.
struct ControlBlockAddress {
    /// The multicast address.
    std::optional<TalIec61850Analysis::MacAddress> mac;
    /// APPID.
    std::optional<std::uint16_t> appId;
    /// VLAN-ID, 12 bits.
    std::optional<std::uint16_t> vlanId;
    /// VLAN-PRIORITY, 0 to 7.
    std::optional<std::uint8_t> vlanPriority;
    /// The shortest time between two messages, in nanoseconds. GOOSE.
    std::optional<std::int64_t> minTime;
    /// The longest, likewise.
    std::optional<std::int64_t> maxTime;

    /// Member by member.
    friend bool operator==(ControlBlockAddress const&, ControlBlockAddress const&) = default;
};

/// The unit of a control block's smpRate.
enum class SampleRateUnit : std::uint8_t {
    samplesPerPeriod,  ///< SmpPerPeriod, also where the description does not say
    samplesPerSecond,  ///< SmpPerSec
    secondsPerSample,  ///< SecPerSmp
};

/// Which optional fields an ASDU has (SmvOpts).
struct SmvOptions {
    bool refreshTime = false;         ///< refrTm
    bool sampleSynchronized = false;  ///< smpSynch; edition 2 fixes it at true
    bool sampleRate = false;          ///< smpRate
    bool dataSet = false;             ///< datSet
    bool security = false;            ///< security of the frame
    bool timestamp = false;           ///< a time stamp
    bool synchSourceId = false;       ///< gmIdentity

    /// Member by member.
    friend bool operator==(SmvOptions const&, SmvOptions const&) = default;
};

/// How the access point of a publisher is attached (redProt).
enum class RedundancyProtocol : std::uint8_t { none, hsr, prp, rstp };

/// How a description says that somebody listens.
enum class SubscriptionSource : std::uint8_t {
    controlBlock,  ///< an ExtRef that names the control block
    data,          ///< an ExtRef that names data which this control block sends
    iedName,       ///< an IEDName of the control block, for a whole IED
};

/// One that listens to a control block.
struct Subscriber {
    /// The IED that listens.
    std::string ied;
    /// The logical node that does: LD0/PTRC1. Empty where the description has only the IED.
    std::string node;
    /// Where the value goes to in that IED. Empty where the description does not say.
    std::string intAddr;
    /// Which value it takes: its number among the members of the data set. Not set where it takes
    /// the message as a whole, or something that the data set does not have.
    std::optional<std::size_t> member;
    /// How the description says so.
    SubscriptionSource source = SubscriptionSource::controlBlock;
    /// Where it says so.
    SclPlace place;

    /// Member by member.
    friend bool operator==(Subscriber const&, Subscriber const&) = default;
};

/// A GOOSE or SV control block, as a station's description has it (GSEControl, SampledValueControl
/// of IEC 61850-6).
struct ControlBlock {
    /// GOOSE or SV.
    TalIec61850Analysis::StreamProtocol protocol = TalIec61850Analysis::StreamProtocol::goose;
    /// The IED that publishes.
    std::string ied;
    /// The access point that it publishes at. Empty where the IED has none with an address for it.
    std::string accessPoint;
    /// The logical device: its inst.
    std::string ldInst;
    /// The control block's own name.
    std::string name;
    /// On the wire: IED1LD0/LLN0$GO$gcb1, of SV IED1LD0/LLN0$MS$msvcb1.
    std::string reference;
    /// goID or svID on the wire: appID of a GSEControl, smvID of a SampledValueControl.
    std::string id;
    /// Its desc. Empty where it has none.
    std::string desc;
    /// On the wire: IED1LD0/LLN0$dsTrip. Not set where the control block has no data set.
    std::optional<std::string> dataSetReference;
    /// Its number among the data sets of the description. Not set where there is none of that name.
    std::optional<std::size_t> dataSet;
    /// The revision. Not set where the description does not say, or says no number.
    std::optional<std::uint32_t> confRev;
    /// Where it sends to.
    ControlBlockAddress address;
    /// GOOSE: whether values have fixed lengths.
    bool fixedOffsets = false;
    /// SV: samples, in the unit of smpRateUnit. Not set where the description does not say.
    std::optional<std::uint32_t> smpRate;
    /// SV: the unit of smpRate.
    SampleRateUnit smpRateUnit = SampleRateUnit::samplesPerPeriod;
    /// SV: ASDUs in a frame. Not set where the description does not say.
    std::optional<std::uint32_t> nofASDU;
    /// SV: which optional fields there are. Not set where there is no SmvOpts.
    std::optional<SmvOptions> options;
    /// SV: false where it is sent to one subscriber, and so never seen by its multicast address.
    bool multicast = true;
    /// How the access point is attached.
    RedundancyProtocol redundancy = RedundancyProtocol::none;
    /// Who listens, in the order of the description.
    std::vector<Subscriber> subscribers;
    /// Where it is described.
    SclPlace place;

    /// Member by member.
    friend bool operator==(ControlBlock const&, ControlBlock const&) = default;
};

}  // namespace TalIec61850Scl
