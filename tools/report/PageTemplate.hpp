#pragma once

#include <functional>
#include <string_view>

#include "tools/output/TextSink.hpp"

namespace TalIec61850Tools {

/// The files that a page is made of, as they were when the program was built.
struct PageFiles {
    /// With places such as {{head}}.
    std::string_view page;
    std::string_view style;
    /// All scripts of tools/report/page, one after the other.
    std::string_view script;
    /// Those of the chart library, and what is to be said of its licence.
    std::string_view chartStyle;
    std::string_view chartScript;
    std::string_view chartLicence;
};

/// Those that the program was built with.
[[nodiscard]] PageFiles const& pageFiles();

/// Writes a page.
/// @param page  with places such as {{head}}
/// @param fill  writes what belongs to a place, by its name
/// @param sink  takes the pieces of the page
void fillTemplate(std::string_view page, std::function<void(std::string_view place)> const& fill,
                  TextSink const& sink);

}  // namespace TalIec61850Tools
