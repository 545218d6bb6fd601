#include "tools/render/DiagnosticText.hpp"

#include <fmt/format.h>

#include <cstddef>
#include <string_view>

#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

using TalIec61850Scl::Diagnostic;
using TalIec61850Scl::DiagnosticCode;

namespace {

/// A subject may be whatever an attribute holds.
constexpr std::size_t kMostColumns = 120;

}  // namespace

std::string diagnosticText(Diagnostic const& diagnostic, std::vector<std::string> const& files) {
    std::string text = escapeText(files[diagnostic.place.file]);
    if (diagnostic.place.line != 0) {
        text += fmt::format(":{}", diagnostic.place.line);
    }
    text += fmt::format(": {}", TalIec61850Scl::nameOf(diagnostic.code));
    if (!diagnostic.subject.empty()) {
        text += fmt::format(
            ": {}", shorten(escapeText(diagnostic.subject), kMostColumns, Cut::middle, "..."));
    }
    return text;
}

std::vector<std::string> diagnosticTexts(TalIec61850Scl::StationDescription const& station) {
    constexpr std::size_t most = 5;
    std::vector<std::string> texts;
    std::size_t more = 0;
    for (Diagnostic const& diagnostic : station.diagnostics) {
        bool const isFault = diagnostic.code == DiagnosticCode::notXml ||
                             diagnostic.code == DiagnosticCode::notScl ||
                             diagnostic.code == DiagnosticCode::unreadableFile;
        if (isFault) {
            continue;
        }
        if (texts.size() < most) {
            texts.push_back(diagnosticText(diagnostic, station.files));
        } else {
            ++more;
        }
    }
    if (more != 0) {
        texts.push_back(fmt::format("and {} more; scl list --diagnostics lists them all", more));
    }
    return texts;
}

}  // namespace TalIec61850Tools
