#pragma once

// Internal: which line of a text an offset is in.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace TalIec61850Scl::detail {

/// Where the lines of a text end. The text itself is not kept: parsing changes it.
class LineTable {
public:
    /// No lines.
    LineTable() = default;
    explicit LineTable(std::string_view text);

    /// The line of an offset, from 1. Offsets after the end are in the last one.
    [[nodiscard]] std::uint32_t lineAt(std::size_t offset) const;

private:
    /// Of the octets that end lines, in their order.
    std::vector<std::size_t> ends_;
};

}  // namespace TalIec61850Scl::detail
