#include "tools/render/StreamFields.hpp"

#include <fmt/format.h>

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

std::string appIdText(std::uint64_t appId) { return fmt::format("0x{:04X}", appId); }

std::string_view toText(Protocol protocol) { return protocol == Protocol::goose ? "GOOSE" : "SV"; }

std::vector<Field<StreamIdentity>> streamFields() {
    using Stream = StreamIdentity const&;
    return {
        {"protocol", [](Stream s) { return toText(s.protocol); }},
        {"source", [](Stream s) { return optionalField(s.source); }},
        {"destination", [](Stream s) { return optionalField(s.destination); }},
        {"vlanId",
         [](Stream s) { return s.vlan ? optionalField(s.vlan->vlanId) : Fields(nullptr); }},
        {"appId", [](Stream s) { return s.appId ? Fields(appIdText(*s.appId)) : Fields(nullptr); }},
        {"hsrLane", [](Stream s) { return laneField(s.hsr); }},
        {"prpLane", [](Stream s) { return laneField(s.prp); }},
        {"reserved1Bit0", [](Stream s) { return optionalField(s.reserved1Bit0); }},
        {"svID", [](Stream s) { return optionalField(s.svID); }},
        {"gocbRef", [](Stream s) { return optionalField(s.gocbRef); }},
        {"datSet", [](Stream s) { return optionalField(s.datSet); }},
        {"goID", [](Stream s) { return optionalField(s.goID); }},
        {"confRev", [](Stream s) { return optionalField(s.confRev); }},
        {"simulationPresent", [](Stream s) { return optionalField(s.simulationPresent); }}};
}

}  // namespace TalIec61850Tools
