#pragma once

// Internal: octets of captures, read in pieces that are mostly asked for one after the other.

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Shows octets of some files. The files that were used last stay open, with what was read last of
/// each.
class CaptureWindow {
public:
    /// The most that can be asked for.
    static constexpr std::size_t kMostOctets = std::size_t{128} << 10U;

    /// @param paths  of the files, by their number
    explicit CaptureWindow(std::vector<std::string> paths) : paths_(std::move(paths)) {}
    /// @param index  of the files
    explicit CaptureWindow(TrafficIndex const& index);

    /// Octets of a file.
    /// @param size  at most kMostOctets
    /// @return fewer only at the end of the file; valid until the next call
    /// @throws std::system_error  the file cannot be opened or read
    [[nodiscard]] Octets at(std::uint32_t file, std::uint64_t fileOffset, std::size_t size) {
        if (current_ != nullptr && current_->number == file && fileOffset >= current_->start &&
            fileOffset + size <= current_->start + current_->size) [[likely]] {
            return {current_->octets.get() + (fileOffset - current_->start), size};
        }
        return readAround(file, fileOffset, size);
    }

private:
    /// What is read at once: it fits the cache, and system calls cost little beside it.
    static constexpr std::size_t kWindow = std::size_t{256} << 10U;
    /// Late samples are before those that were asked for last.
    static constexpr std::size_t kBefore = std::size_t{8} << 10U;
    static constexpr std::size_t kMostOpen = 8;

    struct Open {
        std::uint32_t number = 0;
        Descriptor file;
        std::unique_ptr<std::uint8_t[]> octets;
        std::uint64_t start = 0;
        std::size_t size = 0;
    };

    [[nodiscard]] Octets readAround(std::uint32_t file, std::uint64_t fileOffset, std::size_t size);
    void open(std::uint32_t file);

    std::vector<std::string> paths_;
    /// The one that was used last comes first.
    std::list<Open> open_;
    Open* current_ = nullptr;
};

}  // namespace TalIec61850Analysis::detail
