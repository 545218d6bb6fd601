#include "tools/selection/StreamFields.hpp"

#include <optional>
#include <string>

#include "tools/output/OptionalField.hpp"

namespace TalIec61850Tools {

namespace {

template <typename Group>
Fields laneField(std::optional<Group> const& group) {
    return group && group->lanId ? Fields(std::string(1, *group->lanId)) : Fields(nullptr);
}

}  // namespace

std::string_view toText(Protocol protocol) { return protocol == Protocol::goose ? "GOOSE" : "SV"; }

void addFields(StreamIdentity const& identity, Fields& fields) {
    fields["protocol"] = toText(identity.protocol);
    fields["source"] = optionalField(identity.source);
    fields["destination"] = optionalField(identity.destination);
    fields["vlanId"] = identity.vlan ? optionalField(identity.vlan->vlanId) : Fields(nullptr);
    fields["appId"] = optionalField(identity.appId);
    fields["hsrLane"] = laneField(identity.hsr);
    fields["prpLane"] = laneField(identity.prp);
    fields["reserved1Bit0"] = optionalField(identity.reserved1Bit0);
    fields["svID"] = optionalField(identity.svID);
    fields["gocbRef"] = optionalField(identity.gocbRef);
    fields["datSet"] = optionalField(identity.datSet);
    fields["goID"] = optionalField(identity.goID);
    fields["confRev"] = optionalField(identity.confRev);
    fields["simulationPresent"] = optionalField(identity.simulationPresent);
}

}  // namespace TalIec61850Tools
