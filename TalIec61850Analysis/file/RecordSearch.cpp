#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/RecordSearch.hpp>
#include <TalIec61850Analysis/file/WalkedRecords.hpp>
#include <TalIec61850Parser/wire/NextGenerationFormat.hpp>
#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

namespace wire = TalIec61850Parser::wire;

namespace {

/// The octets before a place, and a header's after it.
struct SearchWindow {
    std::uint64_t begin = 0;
    std::vector<std::uint8_t> octets;

    /// Nothing, where the file became shorter and ends before that.
    [[nodiscard]] std::span<std::uint8_t const> from(std::uint64_t fileOffset) const {
        auto const there = std::min<std::uint64_t>(fileOffset - begin, octets.size());
        return std::span(octets).subspan(static_cast<std::size_t>(there));
    }
};

SearchWindow readWindow(SearchPlace const& place, SearchLimits const& limits) {
    SearchWindow window;
    window.begin =
        place.fileOffset - std::min<std::uint64_t>(place.fileOffset - place.start, limits.window);
    std::uint64_t const end =
        std::min<std::uint64_t>(place.fileSize, place.fileOffset + wire::RecordHeader::kSize);
    window.octets.resize(static_cast<std::size_t>(end - window.begin));
    window.octets.resize(readAt(place.file, window.begin, window.octets));
    return window;
}

/// What may be a header.
struct MaybeHeader {
    /// Octets up to the next one; 0 for what cannot be a header.
    std::uint64_t size = 0;
    bool hasPacket = false;
};

MaybeHeader readRecord(SearchPlace const& place, SearchWindow const& window,
                       std::uint64_t fileOffset) {
    auto const octets = window.from(fileOffset);
    if (octets.size() < wire::RecordHeader::kSize) {
        return {};
    }
    constexpr std::uint32_t longest = std::uint32_t{1} << 18U;
    std::uint32_t const second = place.isNanosecond ? 1'000'000'000 : 1'000'000;
    auto const header = wire::RecordHeader::read(octets, place.isLittleEndian);
    if (header.inclLen > header.origLen || header.origLen > longest || header.tsUsec >= second) {
        return {};
    }
    return {.size = wire::RecordHeader::kSize + header.inclLen, .hasPacket = true};
}

/// The length after a block, which may be far from the window.
bool endsWith(SearchPlace const& place, SearchWindow const& window, std::uint64_t fileOffset,
              std::uint32_t length) {
    std::uint64_t const at = fileOffset + length - wire::kBlockTrailerSize;
    std::array<std::uint8_t, wire::kBlockTrailerSize> far{};
    std::span<std::uint8_t const> trailer = far;
    if (at + wire::kBlockTrailerSize <= window.begin + window.octets.size()) {
        trailer = window.from(at);
    } else if (readAt(place.file, at, far) != far.size()) {
        return false;
    }
    return wire::readFileUint32(trailer, 0, place.isLittleEndian) == length;
}

MaybeHeader readBlock(SearchPlace const& place, SearchWindow const& window,
                      std::uint64_t fileOffset) {
    auto const octets = window.from(fileOffset);
    if (octets.size() < wire::kBlockHeaderSize) {
        return {};
    }
    std::uint32_t const type = wire::readFileUint32(octets, 0, place.isLittleEndian);
    std::uint32_t const length = wire::readFileUint32(octets, 4, place.isLittleEndian);
    if (length < wire::kSmallestBlock || length % wire::kBlockAlignment != 0 ||
        length > kLongestBlock || length > place.fileSize - fileOffset) {
        return {};
    }
    // One that ends after the offset is looked at again: there are many that only seem to.
    bool const isBefore = fileOffset + length <= place.fileOffset;
    if (isBefore && !endsWith(place, window, fileOffset, length)) {
        return {};
    }
    return {.size = length, .hasPacket = wire::isPacketBlock(type)};
}

using ReadHeader = MaybeHeader (*)(SearchPlace const&, SearchWindow const&, std::uint64_t);

/// @param alignment  of the offsets at which a header may be
/// @return the offsets of all headers of packets that hold the offset, and to which rows lead
std::vector<std::uint64_t> search(SearchPlace const& place, SearchLimits const& limits,
                                  SearchWindow const& window, std::size_t alignment,
                                  ReadHeader readHeader) {
    std::uint64_t const first = (window.begin + alignment - 1) / alignment * alignment;
    std::vector<std::uint64_t> found;
    // How many headers in a row lead to each offset.
    std::vector<std::uint8_t> rows(
        static_cast<std::size_t>(place.fileOffset - window.begin) / alignment + 1);
    for (std::uint64_t at = first; at <= place.fileOffset; at += alignment) {
        auto const [size, hasPacket] = readHeader(place, window, at);
        std::uint8_t const row = rows[static_cast<std::size_t>((at - first) / alignment)];
        std::uint64_t const end = at + size;
        if (size == 0 || end > place.fileSize) {
            continue;
        }
        if (end <= place.fileOffset) {
            auto& next = rows[static_cast<std::size_t>((end - first) / alignment)];
            bool const isMost = row == std::numeric_limits<std::uint8_t>::max();
            next = std::max(next, static_cast<std::uint8_t>(row + (isMost ? 0 : 1)));
        } else if (hasPacket && row >= limits.before) {
            found.push_back(at);
        }
    }
    return found;
}

bool isInside(SearchPlace const& place) {
    return place.start <= place.fileOffset && place.fileOffset < place.fileSize;
}

std::optional<std::uint64_t> only(std::vector<std::uint64_t> const& found) {
    return found.size() == 1 ? std::optional(found.front()) : std::nullopt;
}

}  // namespace

std::optional<std::uint64_t> searchClassic(SearchPlace const& place, SearchLimits const& limits) {
    if (!isInside(place)) {
        return std::nullopt;
    }
    return only(search(place, limits, readWindow(place, limits), 1, readRecord));
}

std::optional<std::uint64_t> searchNextGeneration(SearchPlace const& place,
                                                  SearchLimits const& limits) {
    if (!isInside(place)) {
        return std::nullopt;
    }
    auto const window = readWindow(place, limits);
    auto found = search(place, limits, window, wire::kBlockAlignment, readBlock);
    auto const isBroken = [&](std::uint64_t at) {
        auto const length = wire::readFileUint32(window.from(at), 4, place.isLittleEndian);
        return !endsWith(place, window, at, length);
    };
    found.erase(std::remove_if(found.begin(), found.end(), isBroken), found.end());
    return only(found);
}

}  // namespace TalIec61850Analysis::detail
