#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/RecordSearch.hpp>
#include <TalIec61850Analysis/file/WalkedRecords.hpp>
#include <TalIec61850Parser/wire/NextGenerationFormat.hpp>
#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

namespace wire = TalIec61850Parser::wire;

namespace {

/// Octets after the offset that are read at once with those before it.
constexpr std::size_t kReadAfter = std::size_t{64} << 10U;

/// The octets around a place, and others in small numbers.
class Surroundings {
public:
    Surroundings(SearchPlace const& place, SearchLimits const& limits)
        : file_(place.file), readsLeft_(limits.reads) {
        begin_ = place.fileOffset -
                 std::min<std::uint64_t>(place.fileOffset - place.start, limits.window);
        std::uint64_t const end =
            place.fileOffset +
            std::min<std::uint64_t>(place.fileSize - place.fileOffset, kReadAfter);
        octets_.resize(static_cast<std::size_t>(end - begin_));
        octets_.resize(readAt(file_, begin_, octets_));
    }

    /// Where the window begins.
    [[nodiscard]] std::uint64_t begin() const { return begin_; }

    /// Reads are used up, or the file has become shorter: nothing can be told.
    [[nodiscard]] bool isExhausted() const { return isExhausted_; }

    /// @param size  at most that of a record's header
    /// @return none where the octets cannot be had; valid until the next call
    [[nodiscard]] std::optional<std::span<std::uint8_t const>> at(std::uint64_t fileOffset,
                                                                  std::size_t size) {
        if (fileOffset >= begin_ && fileOffset + size <= begin_ + octets_.size()) {
            return std::span(octets_).subspan(static_cast<std::size_t>(fileOffset - begin_), size);
        }
        if (readsLeft_ > 0) {
            --readsLeft_;
            auto const other = std::span(other_).first(size);
            if (readAt(file_, fileOffset, other) == size) {
                return other;
            }
        }
        isExhausted_ = true;
        return std::nullopt;
    }

private:
    Descriptor const& file_;
    std::uint64_t begin_ = 0;
    std::vector<std::uint8_t> octets_;
    std::array<std::uint8_t, wire::RecordHeader::kSize> other_{};
    std::size_t readsLeft_;
    bool isExhausted_ = false;
};

/// What a header says, for the search.
struct Link {
    /// Octets up to the next header; not set where no header is, or the file ends before.
    std::optional<std::uint64_t> size;
    /// It holds a packet.
    bool hasPacket = false;
    /// Nothing can be said of what follows.
    bool isLast = false;
};

Link classicLink(SearchPlace const& place, Surroundings& around, std::uint64_t fileOffset) {
    std::uint64_t const left = place.fileSize - fileOffset;
    if (left < wire::RecordHeader::kSize) {
        return {};
    }
    auto const octets = around.at(fileOffset, wire::RecordHeader::kSize);
    if (!octets) {
        return {};
    }
    auto const header = wire::RecordHeader::read(*octets, place.isLittleEndian);
    if (header.inclLen > kLongestFrame || header.inclLen > left - wire::RecordHeader::kSize) {
        return {};
    }
    return {.size = wire::RecordHeader::kSize + header.inclLen, .hasPacket = true};
}

Link nextGenerationLink(SearchPlace const& place, Surroundings& around, std::uint64_t fileOffset) {
    std::uint64_t const left = place.fileSize - fileOffset;
    if (left < wire::kSmallestBlock) {
        return {};
    }
    auto const header = around.at(fileOffset, wire::kBlockHeaderSize);
    if (!header) {
        return {};
    }
    std::uint32_t const type = wire::readFileUint32(*header, 0, place.isLittleEndian);
    std::uint32_t const length = wire::readFileUint32(*header, 4, place.isLittleEndian);
    if (type == wire::kSectionBlock) {
        return {.size = std::nullopt, .hasPacket = false, .isLast = true};
    }
    if (length < wire::kSmallestBlock || length % wire::kBlockAlignment != 0 || length > left) {
        return {};
    }
    auto const trailer =
        around.at(fileOffset + length - wire::kBlockTrailerSize, wire::kBlockTrailerSize);
    if (!trailer || wire::readFileUint32(*trailer, 0, place.isLittleEndian) != length) {
        return {};
    }
    return {.size = length, .hasPacket = wire::isPacketBlock(type)};
}

/// Whether a block with a packet may begin at an offset that is in the window, and hold the offset
/// looked for. Told by its header alone, without reading what is far away.
bool mayHoldPacket(SearchPlace const& place, Surroundings& around, std::uint64_t fileOffset) {
    if (place.fileSize - fileOffset < wire::kSmallestBlock) {
        return false;
    }
    auto const header = around.at(fileOffset, wire::kBlockHeaderSize);
    if (!header || !wire::isPacketBlock(wire::readFileUint32(*header, 0, place.isLittleEndian))) {
        return false;
    }
    std::uint32_t const length = wire::readFileUint32(*header, 4, place.isLittleEndian);
    return length > place.fileOffset - fileOffset && length <= kLongestBlock;
}

using ReadLink = Link (*)(SearchPlace const&, Surroundings&, std::uint64_t);

/// Whether headers follow one another from an offset on.
bool isChain(SearchPlace const& place, SearchLimits const& limits, Surroundings& around,
             std::uint64_t fileOffset, ReadLink readLink) {
    for (std::size_t count = 0; count < limits.chain; ++count) {
        if (fileOffset == place.fileSize) {
            return true;
        }
        Link const link = readLink(place, around, fileOffset);
        if (!link.size) {
            return link.isLast || count >= limits.beforeDamage;
        }
        fileOffset += *link.size;
    }
    return true;
}

/// @param alignment  of the offsets at which a header may be
std::optional<std::uint64_t> search(SearchPlace const& place, SearchLimits const& limits,
                                    std::size_t alignment, ReadLink readLink) {
    if (place.fileOffset < place.start || place.fileOffset >= place.fileSize) {
        return std::nullopt;
    }
    Surroundings around(place, limits);
    std::optional<std::uint64_t> found;
    std::uint64_t const first = (around.begin() + alignment - 1) / alignment * alignment;
    for (std::uint64_t at = first; at <= place.fileOffset; at += alignment) {
        bool const isCandidate = alignment == 1 || mayHoldPacket(place, around, at);
        Link const link = isCandidate ? readLink(place, around, at) : Link{};
        bool const holds = link.size && link.hasPacket && at + *link.size > place.fileOffset;
        if (holds && isChain(place, limits, around, at + *link.size, readLink)) {
            if (found) {
                return std::nullopt;
            }
            found = at;
        }
        if (around.isExhausted()) {
            return std::nullopt;
        }
    }
    return found;
}

}  // namespace

std::optional<std::uint64_t> searchClassic(SearchPlace const& place, SearchLimits const& limits) {
    return search(place, limits, 1, classicLink);
}

std::optional<std::uint64_t> searchNextGeneration(SearchPlace const& place,
                                                  SearchLimits const& limits) {
    return search(place, limits, wire::kBlockAlignment, nextGenerationLink);
}

}  // namespace TalIec61850Analysis::detail
