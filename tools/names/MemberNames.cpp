#include "tools/names/MemberNames.hpp"

#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

bool MemberNames::meet(std::vector<std::string> const& patterns,
                       std::span<std::uint32_t const> path) const {
    std::string const name(nameAt(path));
    if (name.empty()) {
        return false;
    }
    std::size_t const slash = name.find('/');
    std::string const inDevice = slash == std::string::npos ? name : name.substr(slash + 1);
    return meetsPattern(patterns, name) || meetsPattern(patterns, inDevice) ||
           meetsPattern(patterns, fullNameAt(path));
}

}  // namespace TalIec61850Tools
