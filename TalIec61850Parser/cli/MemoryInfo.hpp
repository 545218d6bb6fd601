#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <cstdint>
#include <string>

namespace cross {

/// How much memory the process holds, and such figures as short text.
class TALIEC61850PARSER_EXPORT MemoryInfo {
public:
    /// The resident set size in octets, from the VmRSS line of /proc/self/status.
    ///
    /// Reads what is after the last blank of that line, as kibibytes.
    /// @return 0 when the file, the line, or a blank in it is missing
    /// @throws std::invalid_argument  deliberate: what is there is no number, as on every
    ///         kernel that ends the line in a blank and kB
    /// @throws std::out_of_range      the number does not fit
    [[nodiscard]] static std::uint64_t getCurrentProcessMemoryUsage();

    /// A count of octets in the largest unit that it reaches, up to "TB", in powers of 1024: whole
    /// quotients without decimals ("1 MB"), others with two ("1.50 KB").
    [[nodiscard]] static std::string bytesToString(std::uint64_t bytes);
};

}  // namespace cross
