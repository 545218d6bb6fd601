#pragma once

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tools/output/WithCommas.hpp"
#include "tools/report/HtmlTable.hpp"

namespace TalIec61850Tools {

/// Rows of a table of the page: other commands list all, a page is to be read.
inline constexpr std::size_t kMostSectionRows = 2000;

/// Streams that a page draws at most, of either protocol.
inline constexpr std::size_t kMostDrawnStreams = 40;

/// A paragraph that says what is not there.
[[nodiscard]] std::string absentMarkup(std::string_view text);

/// A paragraph below a table.
[[nodiscard]] std::string moreMarkup(std::string_view text);

/// A moment of the page, as a link of it.
/// @param time    in nanoseconds since 1970
/// @param length  of what is to be seen on either side, in nanoseconds
/// @return empty without a time
[[nodiscard]] std::string linkToMoment(std::int64_t time, std::int64_t length);

/// What a section says around its table.
struct SectionWords {
    /// Where there is no row.
    std::string_view absent;
    /// What a row is.
    std::string_view noun;
    /// The command that lists all rows.
    std::string_view command;
};

/// A section of the page: its table, and what is not in it.
template <typename Row>
[[nodiscard]] std::string sectionMarkup(HtmlTable<Row> const& table, SectionWords const& words) {
    std::string markup = table.asked() == 0 ? absentMarkup(words.absent) : "";
    markup += table.finish();
    if (table.leftOut() > 0) {
        markup += moreMarkup(fmt::format("{} more {}{} left out: tal-iec61850 {} lists all.",
                                         withCommas(table.leftOut()), words.noun,
                                         table.leftOut() == 1 ? " is" : "s are", words.command));
    }
    return markup;
}

}  // namespace TalIec61850Tools
