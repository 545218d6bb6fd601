#include "tools/render/Cells.hpp"

#include "tools/render/StreamFields.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

Cell appIdCell(StreamIdentity const& identity) {
    return identity.appId ? Cell(appIdText(*identity.appId)) : Cell();
}

Cell vlanCell(StreamIdentity const& identity) {
    return identity.vlan ? Cell(identity.vlan->vlanId) : Cell();
}

Cell hsrCell(StreamIdentity const& identity) {
    return identity.hsr && identity.hsr->lanId ? Cell(std::string_view(&*identity.hsr->lanId, 1))
                                               : Cell();
}

Cell streamNameCell(StreamIdentity const& identity) {
    return identity.svID ? identity.svID : identity.gocbRef;
}

Cell timeCell(std::optional<CaptureTime> const& time) {
    return time ? Cell(toUtcCell(*time)) : Cell();
}

}  // namespace TalIec61850Tools
