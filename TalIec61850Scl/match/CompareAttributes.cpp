#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/traffic/StreamAttributes.hpp>
#include <TalIec61850Scl/match/CompareAttributes.hpp>
#include <TalIec61850Scl/match/WireName.hpp>
#include <algorithm>
#include <limits>
#include <string>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::PacketRef;
using TalIec61850Analysis::Readable;
using TalIec61850Analysis::StreamAttributes;
using TalIec61850Analysis::StreamKey;
using TalIec61850Analysis::StreamProtocol;
using TalIec61850Analysis::valueIn;

template <typename Value>
DifferenceValue valueOf(std::optional<Value> const& value) {
    return value ? DifferenceValue(*value) : DifferenceValue();
}

template <typename Number>
DifferenceValue numberOf(std::optional<Number> const& number) {
    return number ? DifferenceValue(std::int64_t{*number}) : DifferenceValue();
}

/// The VLAN that switches go by.
std::optional<std::uint16_t> innermostVlan(StreamKey const& key) {
    return key.vlans.empty() ? std::nullopt : std::optional(key.vlans.back().id);
}

/// An address without a VLAN is one of frames without a tag; no address says nothing.
bool isAddressDescribed(ControlBlock const& block) {
    return block.address.mac || block.address.appId || block.address.vlanId;
}

/// Compares the attributes from one packet on.
class AttributeComparison {
public:
    AttributeComparison(DescribedStream const& described, StreamAttributes const& found,
                        PacketRef packet, DifferenceSet& differences)
        : stream_(described.stream),
          block_(described.block),
          found_(found),
          packet_(packet),
          differences_(differences) {}

    void run() {
        compareDataSet();
        compareRevision();
        if (stream_.key.protocol == StreamProtocol::goose) {
            compareId();
        } else {
            compareAsdus();
        }
    }

private:
    void compareId() {
        std::string const& id = found_.goID ? *found_.goID : stream_.key.name;
        if (!block_.id.empty() && id != block_.id && !isCutOff(found_.goID.has_value())) {
            add(DifferenceKind::goID, block_.id, valueOf(found_.goID));
        }
    }

    void compareDataSet() {
        auto const& expected = block_.dataSetReference;
        auto const& found = found_.datSet;
        bool const isOptional = stream_.key.protocol == StreamProtocol::sv;
        bool const isLeftOut = !found && (isOptional || isCutOff(false));
        bool const isNone = !expected && (!found || found->empty());
        if (found != expected && !isLeftOut && !isNone) {
            add(DifferenceKind::datSet, valueOf(expected), valueOf(found));
        }
    }

    void compareRevision() {
        if (!block_.confRev || isCutOff(found_.confRev.has_value())) {
            return;
        }
        std::uint64_t const* const revision = valueIn(found_.confRev);
        if (revision == nullptr || *revision != *block_.confRev) {
            add(DifferenceKind::confRev, numberOf(block_.confRev), revisionOf(revision));
        }
    }

    void compareAsdus() {
        if (block_.nofASDU && found_.asdus != *block_.nofASDU && !isCutOff(found_.asdus != 0)) {
            add(DifferenceKind::noASDU, numberOf(block_.nofASDU), std::int64_t{found_.asdus});
        }
    }

    [[nodiscard]] bool isCutOff(bool isThere) const { return !isThere && found_.isCut; }

    static DifferenceValue revisionOf(std::uint64_t const* revision) {
        constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        return revision == nullptr
                   ? DifferenceValue()
                   : DifferenceValue(static_cast<std::int64_t>(std::min(*revision, kMost)));
    }

    void add(DifferenceKind kind, DifferenceValue const& expected, DifferenceValue const& found) {
        differences_.add(
            {.kind = kind, .expected = expected, .found = found, .member = {}, .packet = packet_});
    }

    TalIec61850Analysis::TrafficStream const& stream_;
    ControlBlock const& block_;
    StreamAttributes const& found_;
    PacketRef packet_;
    DifferenceSet& differences_;
};

}  // namespace

void compareKey(DescribedStream const& described, DifferenceSet& differences) {
    StreamKey const& key = described.stream.key;
    ControlBlock const& block = described.block;
    auto const add = [&](DifferenceKind kind, DifferenceValue const& expected,
                         DifferenceValue const& found) {
        differences.add({.kind = kind,
                         .expected = expected,
                         .found = found,
                         .member = {},
                         .packet = PacketRef()});
    };
    if (block.address.mac && key.destination && *block.address.mac != *key.destination) {
        add(DifferenceKind::mac, *block.address.mac, *key.destination);
    }
    if (block.address.appId && *block.address.appId != key.appId) {
        add(DifferenceKind::appId, numberOf(block.address.appId), std::int64_t{key.appId});
    }
    auto const vlan = innermostVlan(key);
    if (isAddressDescribed(block) && block.address.vlanId.value_or(0) != vlan.value_or(0)) {
        add(DifferenceKind::vlanId, numberOf(block.address.vlanId), numberOf(vlan));
    }
    std::string const& name = wireNameOf(block);
    if (!name.empty() && name != key.name) {
        add(described.isGoose() ? DifferenceKind::gocbRef : DifferenceKind::svID, name, key.name);
    }
}

void compareAttributes(DescribedStream const& described, DifferenceSet& differences) {
    auto const& parts = described.stream.parts;
    for (std::uint32_t part = 0; part < parts.size(); ++part) {
        for (TalIec61850Analysis::AttributeChange const& change : parts[part].changes) {
            PacketRef const packet{.part = part, .packet = change.firstPacket};
            StreamAttributes const& found = described.index.attributes(parts[part], change);
            AttributeComparison(described, found, packet, differences).run();
        }
    }
}

}  // namespace TalIec61850Scl::detail
