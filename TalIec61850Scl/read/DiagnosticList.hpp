#pragma once

// Internal: what is wrong with one file.

#include <TalIec61850Scl/model/Diagnostic.hpp>
#include <TalIec61850Scl/read/NameHash.hpp>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Scl::detail {

/// Collects diagnostics, at most kMostOfACode of each code, so that a description that is wrong in
/// a million places takes no more memory than one that is right.
class DiagnosticList {
public:
    static constexpr std::size_t kMostOfACode = 1000;

    /// Adds one.
    void add(DiagnosticCode code, SclPlace place, std::string_view subject);
    /// Adds one, unless there is one of this code and subject.
    void addOnce(DiagnosticCode code, SclPlace place, std::string_view subject);
    /// Whether another one of this code would be kept: if not, its place need not be found.
    [[nodiscard]] bool takes(DiagnosticCode code) const noexcept;

    /// All, in the order of lines; they are no longer here then.
    [[nodiscard]] std::vector<Diagnostic> take();

private:
    static constexpr std::size_t kCodes =
        static_cast<std::size_t>(DiagnosticCode::unreadableFile) + 1;

    std::vector<Diagnostic> diagnostics_;
    std::array<std::size_t, kCodes> counts_{};
    NameSet once_;
};

}  // namespace TalIec61850Scl::detail
