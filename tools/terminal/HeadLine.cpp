#include "tools/terminal/HeadLine.hpp"

#include <string_view>

#include "tools/output/Style.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

std::string headLine(std::string const& name, std::vector<std::string> const& words,
                     TextForm const& form) {
    constexpr std::string_view kGap = "  ";
    std::string const shown = shorten(name, form.columns, Cut::middle, form.ellipsis());
    std::string text = emphasise(shown, form.inColour);
    std::size_t used = countColumns(shown);
    for (std::string const& each : words) {
        std::string const word =
            shorten(each, form.columns - kGap.size(), Cut::middle, form.ellipsis());
        std::size_t const more = kGap.size() + countColumns(word);
        if (used + more > form.columns) {
            text += '\n';
            used = 0;
        }
        text.append(kGap).append(word);
        used += more;
    }
    return text + "\n";
}

}  // namespace TalIec61850Tools
