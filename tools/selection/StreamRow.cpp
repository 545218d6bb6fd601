#include "tools/selection/StreamRow.hpp"

#include <algorithm>
#include <tuple>

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

StreamRow identityRow(StreamKey const& key) {
    StreamRow row;
    row.protocol = key.protocol;
    row.source = key.source;
    row.destination = key.destination;
    row.vlans = key.vlans;
    row.appId = key.appId;
    (key.protocol == Protocol::goose ? row.gocbRef : row.svID) = key.name;
    return row;
}

/// The last value of an attribute in the course of a stream; that of no attribute where there is
/// none.
template <typename Value>
Value lastOf(TrafficIndex const& index, TrafficStream const& stream,
             Value StreamAttributes::*member) {
    auto const history = index.history(stream, member);
    return history.empty() ? Value() : *history.back().value;
}

void addAttributes(StreamRow& row, TrafficIndex const& index, TrafficStream const& stream) {
    row.datSet = lastOf(index, stream, &StreamAttributes::datSet);
    row.confRev = lastOf(index, stream, &StreamAttributes::confRev);
    if (row.protocol == Protocol::goose) {
        row.goID = lastOf(index, stream, &StreamAttributes::goID);
    } else {
        row.asdusPerFrame = lastOf(index, stream, &StreamAttributes::asdus);
        row.nominalRate = index.nominalRate(stream);
    }
}

void addPacket(StreamRow& row, PacketColumns const& columns, std::size_t packet, bool isCopy) {
    PacketFlags const flags = columns.flags()[packet];
    if (flags.redundancy() != Redundancy::none) {
        auto& over = flags.redundancy() == Redundancy::hsr ? row.overHsr : row.overPrp;
        ++over[flags.lane() == 'B' ? 1 : 0];
    }
    if (isCopy) {
        ++row.copies;
        return;
    }
    ++row.packets;
    if (auto const time = columns.time(packet)) {
        ++row.timedPackets;
        if (!row.firstTime || *time < *row.firstTime) {
            row.firstTime = time;
            row.firstPackets = 0;
        }
        row.firstPackets += time == row.firstTime ? 1 : 0;
        row.lastTime = std::max(row.lastTime.value_or(*time), *time);
    }
}

void addPart(StreamRow& row, PartPackets packets, bool hasCopies) {
    bool isAny = false;
    for (std::size_t i = 0; i < packets.columns().size(); ++i) {
        if (packets.admit(i)) {
            isAny = true;
            PacketFlags const flags = packets.columns().flags()[i];
            if (flags.isDuplicate()) {
                continue;
            }
            row.isSimulated = row.isSimulated || isSimulated(flags, packets.attributesOf(i));
            addPacket(row, packets.columns(), i, hasCopies && flags.isCopy());
        }
    }
    row.files += isAny ? 1 : 0;
}

bool comesBefore(StreamRow const& a, StreamRow const& b) {
    auto const key = [](StreamRow const& row) {
        return std::tie(row.protocol, row.destination, row.appId, row.svID, row.gocbRef, row.source,
                        row.vlans);
    };
    return key(a) < key(b);
}

}  // namespace

std::optional<double> StreamRow::packetsPerSecond() const {
    if (!firstTime || !lastTime || firstTime == lastTime) {
        return std::nullopt;
    }
    std::chrono::duration<double> const elapsed = *lastTime - *firstTime;
    return static_cast<double>(timedPackets - firstPackets) / elapsed.count();
}

std::vector<StreamRow> collectRows(TrafficIndex const& index, PacketCriteria const& criteria) {
    std::vector<StreamRow> rows;
    for (TrafficStream const& stream : index.streams()) {
        if (!criteria.admitKey(stream.key)) {
            continue;
        }
        StreamRow row = identityRow(stream.key);
        for (StreamPart const& part : stream.parts) {
            addPart(row, {criteria, index, part}, !criteria.chooseLane());
        }
        if (row.packets != 0) {
            addAttributes(row, index, stream);
            rows.push_back(std::move(row));
        }
    }
    std::sort(rows.begin(), rows.end(), comesBefore);
    return rows;
}

}  // namespace TalIec61850Tools
