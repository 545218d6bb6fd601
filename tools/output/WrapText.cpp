#include "tools/output/WrapText.hpp"

namespace TalIec61850Tools {

std::string wrapText(std::string_view text, std::size_t columns) {
    constexpr std::string_view blanks = " \n";
    std::string lines;
    std::size_t used = 0;
    for (std::size_t at = text.find_first_not_of(blanks); at != std::string_view::npos;
         at = text.find_first_not_of(blanks, at)) {
        auto const word = text.substr(at, text.find_first_of(blanks, at) - at);
        bool const fits = used + 1 + word.size() <= columns;
        if (!lines.empty()) {
            lines += fits ? ' ' : '\n';
        }
        used = lines.empty() || !fits ? word.size() : used + 1 + word.size();
        lines += word;
        at += word.size();
    }
    return lines;
}

std::string paragraph(std::string_view text) { return wrapText(text, kHelpColumns) + "\n"; }

}  // namespace TalIec61850Tools
