#include "tools/help/FieldList.hpp"

namespace TalIec61850Tools {

std::string listFields(std::vector<std::string_view> const& names, FieldRemarks const& remarks) {
    std::string list;
    for (auto const& name : names) {
        list.append(list.empty() ? "" : ", ").append(name);
        if (auto const remark = remarks.find(name); remark != remarks.end()) {
            list.append(" (").append(remark->second).append(")");
        }
    }
    return list;
}

}  // namespace TalIec61850Tools
