#include "tools/render/Cells.hpp"

#include "tools/output/TextEscape.hpp"
#include "tools/render/StreamFields.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

std::string nameCell(std::optional<std::string> const& name) {
    if (!name) {
        return std::string(kAbsentCell);
    }
    return name->empty() ? "\"\"" : escapeText(*name);
}

std::string appIdCell(StreamIdentity const& identity) {
    return identity.appId ? appIdText(*identity.appId) : std::string(kAbsentCell);
}

std::string vlanCell(StreamIdentity const& identity) {
    return identity.vlan ? numberCell(identity.vlan->vlanId) : std::string(kAbsentCell);
}

std::string hsrCell(StreamIdentity const& identity) {
    return identity.hsr && identity.hsr->lanId ? escapeText({&*identity.hsr->lanId, 1})
                                               : std::string(kAbsentCell);
}

std::string streamNameCell(StreamIdentity const& identity) {
    return nameCell(identity.svID ? identity.svID : identity.gocbRef);
}

std::string timeCell(std::optional<CaptureTime> const& time) {
    return time ? toUtcText(*time) : std::string(kAbsentCell);
}

}  // namespace TalIec61850Tools
