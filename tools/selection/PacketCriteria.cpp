#include "tools/selection/PacketCriteria.hpp"

#include <algorithm>
#include <variant>

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

/// Whether a counter is wanted that a packet may lack.
bool meetsRange(std::vector<NumberRange> const& wanted, CounterState state,
                std::span<std::uint32_t const> column, std::size_t packet) {
    return wanted.empty() ||
           (state == CounterState::held && !column.empty() &&
            std::any_of(wanted.begin(), wanted.end(),
                        [&](NumberRange const& range) { return range.contains(column[packet]); }));
}

bool meetsLane(std::vector<char> const& wanted, PacketFlags flags,
               std::optional<Redundancy> redundancy) {
    bool const isOfThat = !redundancy || flags.redundancy() == redundancy;
    return wanted.empty() ||
           (isOfThat && std::find(wanted.begin(), wanted.end(), flags.lane()) != wanted.end());
}

std::optional<std::uint64_t> numberOf(std::optional<Readable<std::uint64_t>> const& field) {
    auto const* const number = TalIec61850Analysis::valueIn(field);
    return number != nullptr ? std::optional(*number) : std::nullopt;
}

template <typename Tag>
std::optional<std::uint16_t> idOf(Tag const* tag) {
    return tag != nullptr ? std::optional(tag->id) : std::nullopt;
}

}  // namespace

bool PacketCriteria::admitKey(StreamKey const& key) const {
    bool const isGoose = key.protocol == Protocol::goose;
    auto const vlan = idOf(key.vlans.empty() ? nullptr : &key.vlans.back());
    return (!protocol || protocol == key.protocol) && meets(sources, key.source) &&
           meets(destinations, key.destination) && meets(vlanIds, vlan) &&
           meets(appIds, std::optional(key.appId)) &&
           meetsPattern(svIDs, isGoose ? std::nullopt : std::optional(key.name)) &&
           meetsPattern(gocbRefs, isGoose ? std::optional(key.name) : std::nullopt) &&
           admitIed(key);
}

bool PacketCriteria::admitAttributes(StreamAttributes const& attributes) const {
    return meetsPattern(datSets, attributes.datSet) && meetsPattern(goIDs, attributes.goID) &&
           meets(confRevs, numberOf(attributes.confRev));
}

bool PacketCriteria::admitUnread(Protocol framesProtocol, FrameHeader const& header) const {
    if (!svIDs.empty() || !gocbRefs.empty() || !datSets.empty() || !goIDs.empty() ||
        !confRevs.empty() || !stNums.empty() || !sqNums.empty() || !smpCnts.empty() ||
        !ieds.empty()) {
        return false;
    }
    std::optional<char> const hsr = header.hsr ? std::optional(header.hsr->lane()) : std::nullopt;
    std::optional<char> const prp = header.prp ? std::optional(header.prp->lan()) : std::nullopt;
    auto const vlan = header.vlanTags.innermost();
    return (!protocol || protocol == framesProtocol) && meets(sources, header.source) &&
           meets(destinations, header.destination) &&
           meets(vlanIds, idOf(vlan ? &*vlan : nullptr)) && meets(appIds, header.appId) &&
           meets(hsrLanes, hsr) && meets(prpLanes, prp) && meets(lanes, hsr ? hsr : prp) &&
           (!simulated || (header.reserved1 && *simulated == header.simulated()));
}

bool PacketCriteria::needHeader() const {
    PacketCriteria others = *this;
    others.protocol.reset();
    return others != PacketCriteria();
}

bool PacketCriteria::chooseLane() const {
    return !lanes.empty() || !hsrLanes.empty() || !prpLanes.empty();
}

bool isSimulated(PacketFlags flags, StreamAttributes const& attributes) {
    auto const& element = attributes.simulation;
    auto const* const isSet = element ? std::get_if<bool>(&*element) : nullptr;
    return flags.isSimulated() || (isSet != nullptr && *isSet);
}

StreamAttributes const& PartPackets::attributesOf(std::size_t packet) {
    if (packet < first_ || packet >= last_) {
        findChange(packet);
    }
    return *attributes_;
}

void PartPackets::findChange(std::size_t packet) {
    auto const& changes = part_->changes;
    auto const next = std::upper_bound(
        changes.begin(), changes.end(), packet,
        [](std::size_t wanted, AttributeChange const& c) { return wanted < c.firstPacket; });
    auto const& change = *(next - 1);
    first_ = change.firstPacket;
    last_ = next == changes.end() ? part_->packets.size() : next->firstPacket;
    attributes_ = &index_->attributes(*part_, change);
    areAdmitted_ = criteria_->admitAttributes(*attributes_);
}

bool PartPackets::admit(std::size_t packet) {
    StreamAttributes const& attributes = attributesOf(packet);
    PacketFlags const flags = part_->packets.flags()[packet];
    return areAdmitted_ && meetsLane(criteria_->hsrLanes, flags, Redundancy::hsr) &&
           meetsLane(criteria_->prpLanes, flags, Redundancy::prp) &&
           meetsLane(criteria_->lanes, flags, std::nullopt) &&
           (!criteria_->simulated || criteria_->simulated == isSimulated(flags, attributes)) &&
           admitCounters(packet, flags);
}

bool PartPackets::admitCounters(std::size_t packet, PacketFlags flags) const {
    PacketColumns const& columns = part_->packets;
    return meetsRange(criteria_->stNums, flags.firstCounter(), columns.stNums(), packet) &&
           meetsRange(criteria_->sqNums, flags.secondCounter(), columns.sqNums(), packet) &&
           meetsRange(criteria_->smpCnts, flags.firstCounter(), columns.smpCnts(), packet);
}

}  // namespace TalIec61850Tools
