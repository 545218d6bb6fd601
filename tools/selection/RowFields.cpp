#include "tools/selection/RowFields.hpp"

#include <string>

namespace TalIec61850Tools {

using Json = nlohmann::ordered_json;

namespace {

template <typename T>
Json field(std::optional<T> const& value) {
    return value ? Json(*value) : Json(nullptr);
}

Json textField(std::optional<CaptureTime> const& time) {
    return time ? Json(toUtcText(*time)) : Json(nullptr);
}

Json integerField(std::optional<CaptureTime> const& time) {
    return time ? Json(time->time_since_epoch().count()) : Json(nullptr);
}

template <typename Group>
Json laneField(std::optional<Group> const& group) {
    return group && group->lanId ? Json(std::string(1, *group->lanId)) : Json(nullptr);
}

}  // namespace

std::string_view toText(Protocol protocol) { return protocol == Protocol::goose ? "GOOSE" : "SV"; }

Json toFields(StreamRow const& row) {
    Json fields;
    fields["protocol"] = toText(row.protocol);
    fields["source"] = field(row.source);
    fields["destination"] = field(row.destination);
    fields["vlanId"] = row.vlan ? field(row.vlan->vlanId) : Json(nullptr);
    fields["appId"] = field(row.appId);
    fields["hsrLane"] = laneField(row.hsr);
    fields["prpLane"] = laneField(row.prp);
    fields["reserved1Bit0"] = field(row.reserved1Bit0);
    fields["svID"] = field(row.svID);
    fields["gocbRef"] = field(row.gocbRef);
    fields["datSet"] = field(row.datSet);
    fields["goID"] = field(row.goID);
    fields["confRev"] = field(row.confRev);
    fields["simulationPresent"] = field(row.simulationPresent);
    fields["packets"] = row.packets;
    fields["files"] = row.files;
    fields["firstTime"] = textField(row.firstTime);
    fields["firstTimeNs"] = integerField(row.firstTime);
    fields["lastTime"] = textField(row.lastTime);
    fields["lastTimeNs"] = integerField(row.lastTime);
    fields["packetsPerSecond"] = field(row.packetsPerSecond());
    return fields;
}

}  // namespace TalIec61850Tools
