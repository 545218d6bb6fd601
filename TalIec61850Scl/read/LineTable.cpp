#include <TalIec61850Scl/read/LineTable.hpp>
#include <algorithm>

namespace TalIec61850Scl::detail {

LineTable::LineTable(std::string_view text) {
    for (std::size_t at = text.find('\n'); at != std::string_view::npos;
         at = text.find('\n', at + 1)) {
        ends_.push_back(at);
    }
}

std::uint32_t LineTable::lineAt(std::size_t offset) const {
    auto const before = std::lower_bound(ends_.begin(), ends_.end(), offset) - ends_.begin();
    return static_cast<std::uint32_t>(before) + 1;
}

}  // namespace TalIec61850Scl::detail
