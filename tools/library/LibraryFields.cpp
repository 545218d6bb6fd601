#include "tools/library/LibraryFields.hpp"

#include <optional>

#include "tools/render/AddressText.hpp"
#include "tools/render/Cells.hpp"

namespace TalIec61850Tools {

namespace {

template <typename Group>
Cell laneCell(std::optional<Group> const& group) {
    return group && group->lanId ? Cell(std::string_view(&*group->lanId, 1)) : Cell();
}

}  // namespace

std::vector<Field<LibraryStream>> libraryFields() {
    using Stream = LibraryStream const&;
    return {{"protocol", [](Stream s) -> Cell { return toText(s.protocol); }},
            {"source", [](Stream s) -> Cell { return s.source; }},
            {"destination", [](Stream s) -> Cell { return s.destination; }},
            {"vlanId", [](Stream s) -> Cell { return s.vlan ? Cell(s.vlan->vlanId) : Cell(); }},
            {"appId",
             [](Stream s) -> Cell {
                 return s.appId ? Cell(appIdText(static_cast<std::uint16_t>(*s.appId))) : Cell();
             }},
            {"hsrLane", [](Stream s) -> Cell { return laneCell(s.hsr); }},
            {"prpLane", [](Stream s) -> Cell { return laneCell(s.prp); }},
            {"reserved1Bit0", [](Stream s) -> Cell { return s.reserved1Bit0; }},
            {"svID", [](Stream s) -> Cell { return s.svID; }},
            {"gocbRef", [](Stream s) -> Cell { return s.gocbRef; }},
            {"datSet", [](Stream s) -> Cell { return s.datSet; }},
            {"goID", [](Stream s) -> Cell { return s.goID; }},
            {"confRev", [](Stream s) -> Cell { return s.confRev; }},
            {"simulationPresent", [](Stream s) -> Cell { return s.simulationPresent; }}};
}

}  // namespace TalIec61850Tools
