#include <TalIec61850Scl/read/DiagnosticList.hpp>
#include <TalIec61850Scl/read/Element.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Scl::detail {

void DiagnosticList::add(DiagnosticCode code, SclPlace place, std::string_view subject) {
    if (takes(code)) {
        ++counts_[static_cast<std::size_t>(code)];
        diagnostics_.push_back({.code = code,
                                .place = place,
                                .subject = std::string(startOf(subject, kMostNameOctets))});
    }
}

void DiagnosticList::addOnce(DiagnosticCode code, SclPlace place, std::string_view subject) {
    if (!takes(code)) {
        return;
    }
    std::string key(1, static_cast<char>(code));
    key += startOf(subject, kMostNameOctets);
    if (once_.insert(std::move(key)).second) {
        add(code, place, subject);
    }
}

bool DiagnosticList::takes(DiagnosticCode code) const noexcept {
    return counts_[static_cast<std::size_t>(code)] < kMostOfACode;
}

std::vector<Diagnostic> DiagnosticList::take() {
    std::stable_sort(
        diagnostics_.begin(), diagnostics_.end(), [](Diagnostic const& a, Diagnostic const& b) {
            return std::pair(a.place.file, a.place.line) < std::pair(b.place.file, b.place.line);
        });
    return std::exchange(diagnostics_, {});
}

}  // namespace TalIec61850Scl::detail
