#include "tools/report/PageTemplate.hpp"

namespace TalIec61850Tools {

void fillTemplate(std::string_view page, std::function<void(std::string_view place)> const& fill,
                  TextSink const& sink) {
    constexpr std::string_view kOpen = "{{";
    constexpr std::string_view kClose = "}}";
    while (true) {
        std::size_t const open = page.find(kOpen);
        std::size_t const close = page.find(kClose, open);
        if (open == std::string_view::npos || close == std::string_view::npos) {
            sink(page);
            return;
        }
        sink(page.substr(0, open));
        fill(page.substr(open + kOpen.size(), close - open - kOpen.size()));
        page.remove_prefix(close + kClose.size());
    }
}

}  // namespace TalIec61850Tools
