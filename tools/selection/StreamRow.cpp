#include "tools/selection/StreamRow.hpp"

#include <algorithm>
#include <tuple>

namespace TalIec61850Tools {

using TalIec61850Parser::Db;
using TalIec61850Parser::Goose;
using TalIec61850Parser::HsrInfo;
using TalIec61850Parser::Package;
using TalIec61850Parser::Sv;
using TalIec61850Parser::VlanInfo;

namespace {

/// A packet without a position is one whose PDU could not be placed; it has no time either.
bool hasTime(Package const& package) { return package.position != 0; }

void addTime(StreamRow& row, CaptureTime time) {
    ++row.timedPackets;
    row.firstTime = std::min(row.firstTime.value_or(time), time);
    row.lastTime = std::max(row.lastTime.value_or(time), time);
}

/// What GOOSE and SV streams have alike.
template <typename Stream>
StreamRow commonRow(Protocol protocol, Stream const& stream) {
    StreamRow row;
    row.protocol = protocol;
    row.source = stream.srcMac;
    row.destination = stream.dstMac;
    row.vlan = stream.vlan;
    row.hsr = stream.hsr;
    row.prp = stream.prp;
    row.appId = stream.appId;
    row.reserved1Bit0 = stream.reserved1Bit0;
    row.confRev = stream.confRev;
    row.files = stream.files.size();
    for (auto const& file : stream.files) {
        row.packets += file.packages.size();
        for (Package const& package : file.packages) {
            if (hasTime(package)) {
                addTime(row, toCaptureTime(package.time));
            }
        }
    }
    return row;
}

StreamRow gooseRow(Goose const& goose) {
    StreamRow row = commonRow(Protocol::goose, goose);
    row.gocbRef = goose.gocbRef;
    row.datSet = goose.datSet;
    row.goID = goose.goID;
    row.simulationPresent = goose.simulation.value_or(false);
    return row;
}

StreamRow svRow(Sv const& sv) {
    StreamRow row = commonRow(Protocol::sv, sv);
    row.svID = sv.svID;
    return row;
}

bool comesBefore(StreamRow const& a, StreamRow const& b) {
    auto const names = [](StreamRow const& row) {
        return std::tie(row.protocol, row.destination, row.appId, row.svID, row.gocbRef, row.datSet,
                        row.goID);
    };
    auto const rest = [](StreamRow const& row) {
        VlanInfo const vlan = row.vlan.value_or(VlanInfo{});
        HsrInfo const hsr = row.hsr.value_or(HsrInfo{});
        return std::tuple(vlan.vlanId, vlan.priority, vlan.dei, hsr.lanId, hsr.hsrSpare1,
                          hsr.hsrSpare2, hsr.hsrSpare3, row.reserved1Bit0, row.confRev,
                          row.simulationPresent, row.firstTime, row.lastTime, row.packets);
    };
    if (names(a) != names(b)) {
        return names(a) < names(b);
    }
    return a.source != b.source ? a.source < b.source : rest(a) < rest(b);
}

}  // namespace

std::optional<double> StreamRow::packetsPerSecond() const {
    if (timedPackets < 2 || firstTime == lastTime) {
        return std::nullopt;
    }
    std::chrono::duration<double> const elapsed = *lastTime - *firstTime;
    return static_cast<double>(timedPackets - 1) / elapsed.count();
}

std::vector<StreamRow> collectRows(Db const& db) {
    std::vector<StreamRow> rows;
    rows.reserve(db.gooseProto.streams.size() + db.svProto.streams.size());
    for (Goose const& goose : db.gooseProto.streams) {
        rows.push_back(gooseRow(goose));
    }
    for (Sv const& sv : db.svProto.streams) {
        rows.push_back(svRow(sv));
    }
    std::stable_sort(rows.begin(), rows.end(), comesBefore);
    return rows;
}

}  // namespace TalIec61850Tools
