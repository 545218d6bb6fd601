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
/// each: one piece, or several where streams are gone through together, one a little ahead of the
/// other.
class CaptureWindow {
public:
    /// The most that can be asked for.
    static constexpr std::size_t kMostOctets = std::size_t{128} << 10U;

    /// What is read at once where one part after the other is asked for: it fits the cache, and
    /// system calls cost little beside it.
    static constexpr std::size_t kWindow = std::size_t{256} << 10U;
    /// What is read at once elsewhere: a look here and there must not cost as much as all between.
    static constexpr std::size_t kFirst = std::size_t{8} << 10U;

    /// @param paths  of the files, by their number
    explicit CaptureWindow(std::vector<std::string> paths) : paths_(std::move(paths)) {}
    /// @param index   of the files
    /// @param pieces  that stay of each file; not 0
    /// @param first   octets of a first look: kWindow where streams take turns with the same octets
    explicit CaptureWindow(TrafficIndex const& index, std::size_t pieces = 1,
                           std::size_t first = kFirst);

    /// Octets of a file.
    /// @param size  at most kMostOctets
    /// @return fewer only at the end of the file; valid until the next call
    /// @throws std::system_error  the file cannot be opened or read
    [[nodiscard]] Octets at(std::uint32_t file, std::uint64_t fileOffset, std::size_t size) {
        if (std::uint8_t const* const octets = held(file).at(fileOffset, size)) [[likely]] {
            return {octets, size};
        }
        return readAround(file, fileOffset, size);
    }

    /// What was read last of a file; nothing where that was another one's.
    struct Held {
        std::uint8_t const* octets = nullptr;
        std::uint64_t start = 0;
        std::size_t size = 0;

        /// @return null where not all of them are there
        [[nodiscard]] std::uint8_t const* at(std::uint64_t fileOffset,
                                             std::size_t octetCount) const {
            std::uint64_t const index = fileOffset - start;
            bool const isThere = octetCount <= size && index <= size - octetCount;
            return isThere ? octets + index : nullptr;
        }
    };

    /// Valid until the next call of `at`.
    [[nodiscard]] Held held(std::uint32_t file) const {
        return current_ != nullptr && file_ == file ? current_->held() : Held();
    }

private:
    /// Late samples are before those that were asked for last.
    static constexpr std::size_t kBefore = std::size_t{8} << 10U;
    static constexpr std::size_t kMostOpen = 8;

    /// What is skipped at most where it is read on.
    static constexpr std::size_t kGap = std::size_t{32} << 10U;

    struct Piece {
        std::unique_ptr<std::uint8_t[]> octets;
        std::uint64_t start = 0;
        std::size_t size = 0;
        /// What was asked for of this piece.
        std::size_t wanted = kFirst;

        [[nodiscard]] std::uint64_t end() const { return start + size; }
        [[nodiscard]] Held held() const { return {octets.get(), start, size}; }
    };
    struct Open {
        std::uint32_t number = 0;
        Descriptor file;
        /// The one that was read last comes first.
        std::list<Piece> pieces;
    };

    [[nodiscard]] Octets readAround(std::uint32_t file, std::uint64_t fileOffset, std::size_t size);
    void open(std::uint32_t file);
    void read(Open& open, std::uint64_t fileOffset, std::size_t size) const;

    std::vector<std::string> paths_;
    std::size_t mostPieces_ = 1;
    std::size_t first_ = kFirst;
    /// The one that was used last comes first.
    std::list<Open> open_;
    /// The piece that was used last, and its file.
    Piece* current_ = nullptr;
    std::uint32_t file_ = 0;
};

}  // namespace TalIec61850Analysis::detail
