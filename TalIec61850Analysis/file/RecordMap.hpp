#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis {

/// Where the records of a capture are, by their numbers, and their numbers by their offsets. It
/// takes one octet for most records of usual traffic, two for others, and eight more for a record
/// that is 16 KiB or longer.
class RecordMap {
public:
    /// Adds the record after those that are there.
    /// @param fileOffset  of its header or block in the file, in octets; above that of the last one
    TALIEC61850ANALYSIS_EXPORT void add(std::uint64_t fileOffset);

    /// How many records there are.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// Where a record is.
    /// @param number  counted from 0, in the order of the file
    /// @return none for a number that is not below `size`
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<std::uint64_t> offsetOf(
        std::size_t number) const noexcept;

    /// The last record that begins at an offset in the file or before it.
    /// @return its number; none where all begin after the offset
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<std::size_t> numberAt(
        std::uint64_t fileOffset) const noexcept;

    /// Octets of memory that the map takes.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::size_t memory() const noexcept;

private:
    static constexpr std::size_t kGroup = 1024;
    static constexpr std::size_t kDistances = 192;
    static constexpr std::size_t kSlots = 1024;

    /// @cond
    /// Records that follow one another, by the distances between them.
    struct Group {
        std::uint64_t first = 0;
        std::vector<std::uint8_t> distances;
    };

    /// A walk over the records of one group.
    struct Step {
        std::uint64_t distance = 0;
        std::size_t size = 0;
    };
    /// @endcond

    void addDistance(std::uint64_t distance);
    [[nodiscard]] std::optional<std::uint8_t> codeOf(std::uint64_t distance);
    [[nodiscard]] Step stepAt(Group const& group, std::size_t index) const noexcept;

    std::size_t size_ = 0;
    std::uint64_t last_ = 0;
    std::vector<Group> groups_;
    /// Codes of one octet: the distances that came first.
    std::vector<std::uint32_t> distances_;
    /// The code of a distance, at a place made of it; a place that is taken by another has none.
    std::vector<std::uint16_t> slots_;
};

}  // namespace TalIec61850Analysis
