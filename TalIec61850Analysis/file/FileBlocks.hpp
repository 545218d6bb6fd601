#pragma once

// Internal: a file in sequence, shown in large blocks.

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Shows the octets of a file in sequence. Reading does not move the file's own position, so that
/// others may read it at the same time.
class FileBlocks {
public:
    static constexpr std::size_t kBlockSize = std::size_t{256} << 10U;

    /// @param file        outlives this
    /// @param fileOffset  where to begin
    /// @param end         where to end, if the file does not end before
    FileBlocks(Descriptor const& file, std::uint64_t fileOffset, std::uint64_t end)
        : file_(&file), fileOffset_(fileOffset), end_(end) {}

    /// What is not used yet, followed by the next octets. A block is read, or as much again as is
    /// not used yet: what is gathered in many calls is copied a few times only.
    /// @param unread  the end of what the last call gave, or nothing
    /// @return valid until the next call; just `unread` again when the file has ended
    /// @throws std::system_error  the file cannot be read
    [[nodiscard]] std::span<std::uint8_t const> next(std::span<std::uint8_t const> unread);

private:
    Descriptor const* file_;
    std::uint64_t fileOffset_;
    std::uint64_t end_;
    std::vector<std::uint8_t> buffer_;
};

}  // namespace TalIec61850Analysis::detail
