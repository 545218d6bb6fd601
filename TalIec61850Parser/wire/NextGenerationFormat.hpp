#pragma once

// Internal: the next-generation capture format: blocks, their fixed parts, options.

#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace TalIec61850Parser::wire {

/// The types of blocks that are read; any other is passed over.
inline constexpr std::uint32_t kSectionBlock = 0x0A0D0D0A;
inline constexpr std::uint32_t kInterfaceBlock = 1;
inline constexpr std::uint32_t kOldPacketBlock = 2;
inline constexpr std::uint32_t kSimplePacketBlock = 3;
inline constexpr std::uint32_t kStatisticsBlock = 5;
inline constexpr std::uint32_t kEnhancedPacketBlock = 6;

/// A type and a length before the body of a block, the length again after it.
inline constexpr std::size_t kBlockHeaderSize = 8;
inline constexpr std::size_t kBlockTrailerSize = 4;
inline constexpr std::size_t kSmallestBlock = kBlockHeaderSize + kBlockTrailerSize;
/// Blocks, frames in them and values of options end on multiples of this.
inline constexpr std::size_t kBlockAlignment = 4;

[[nodiscard]] constexpr bool isPacketBlock(std::uint32_t type) {
    return type == kEnhancedPacketBlock || type == kSimplePacketBlock || type == kOldPacketBlock;
}

/// The next multiple of `kBlockAlignment`.
[[nodiscard]] constexpr std::uint64_t padded(std::uint64_t size) {
    return (size + (kBlockAlignment - 1)) & ~std::uint64_t{kBlockAlignment - 1};
}

/// @pre two octets are there
[[nodiscard]] inline std::uint16_t readFileUint16(Octets octets, std::size_t index,
                                                  bool isLittleEndian) {
    std::uint16_t stored = 0;
    std::memcpy(&stored, octets.data() + index, sizeof stored);
    return isHostOrder(isLittleEndian) ? stored : __builtin_bswap16(stored);
}

/// A number of eight octets, as options and section lengths are.
/// @pre eight octets are there
[[nodiscard]] inline std::uint64_t readFileUint64(Octets octets, std::size_t index,
                                                  bool isLittleEndian) {
    std::uint64_t stored = 0;
    std::memcpy(&stored, octets.data() + index, sizeof stored);
    return isHostOrder(isLittleEndian) ? stored : __builtin_bswap64(stored);
}

/// A time: the more significant four octets first, in either byte order.
/// @pre eight octets are there
[[nodiscard]] inline std::uint64_t readFileTime(Octets octets, std::size_t index,
                                                bool isLittleEndian) {
    return std::uint64_t{readFileUint32(octets, index, isLittleEndian)} << 32U |
           readFileUint32(octets, index + 4, isLittleEndian);
}

/// The byte order of a section by its mark.
/// @pre the header of the section's block and the mark are there
/// @return true for little-endian; nullopt for octets that are no mark
[[nodiscard]] inline std::optional<bool> findByteOrder(Octets block) {
    constexpr std::uint32_t mark = 0x1A2B3C4D;
    for (bool const isLittleEndian : {true, false}) {
        if (readFileUint32(block, kByteOrderMarkOffset, isLittleEndian) == mark) {
            return isLittleEndian;
        }
    }
    return std::nullopt;
}

/// The body of a section's block.
struct SectionHeader {
    static constexpr std::size_t kSize = 16;
    static constexpr std::uint16_t kKnownMajor = 1;

    std::uint16_t major = 0;
    /// Octets of the section after this block; all bits set where the writer did not know.
    std::uint64_t length = 0;

    [[nodiscard]] bool hasLength() const { return length != ~std::uint64_t{0}; }

    /// @pre `body` holds at least `kSize` octets
    [[nodiscard]] static SectionHeader read(Octets body, bool isLittleEndian) {
        return {.major = readFileUint16(body, 4, isLittleEndian),
                .length = readFileUint64(body, 8, isLittleEndian)};
    }
};

/// The fixed part of an interface's block; options follow.
struct InterfaceHeader {
    static constexpr std::size_t kSize = 8;

    std::uint16_t linkType = 0;
    /// 0 for none.
    std::uint32_t snapLength = 0;

    /// @pre `body` holds at least `kSize` octets
    [[nodiscard]] static InterfaceHeader read(Octets body, bool isLittleEndian) {
        return {.linkType = readFileUint16(body, 0, isLittleEndian),
                .snapLength = readFileUint32(body, 4, isLittleEndian)};
    }
};

/// The fixed part of a block that holds a packet. What its type does not have is 0 or not set.
struct PacketHeader {
    /// Octets before the frame, in the body.
    std::size_t size = 0;
    std::uint32_t interface = 0;
    /// In units of the interface's resolution.
    std::optional<std::uint64_t> time;
    /// Of the frame in the file; a simple packet block does not say it.
    std::optional<std::uint32_t> capturedSize;
    std::uint32_t originalSize = 0;
    /// Packets lost before this one.
    std::optional<std::uint64_t> dropped;

    /// Octets of the fixed part.
    /// @pre `isPacketBlock(type)`
    [[nodiscard]] static std::size_t sizeOf(std::uint32_t type) {
        constexpr std::size_t simple = 4;
        constexpr std::size_t other = 20;
        return type == kSimplePacketBlock ? simple : other;
    }

    /// @pre `isPacketBlock(type)`, and `body` holds at least `sizeOf(type)` octets
    [[nodiscard]] static PacketHeader read(std::uint32_t type, Octets body, bool isLittleEndian) {
        PacketHeader header;
        header.size = sizeOf(type);
        if (type == kSimplePacketBlock) {
            header.originalSize = readFileUint32(body, 0, isLittleEndian);
            return header;
        }
        if (type == kOldPacketBlock) {
            constexpr std::uint16_t unknown = 0xFFFF;
            header.interface = readFileUint16(body, 0, isLittleEndian);
            std::uint16_t const dropped = readFileUint16(body, 2, isLittleEndian);
            if (dropped != unknown) {
                header.dropped = dropped;
            }
        } else {
            header.interface = readFileUint32(body, 0, isLittleEndian);
        }
        header.time = readFileTime(body, 4, isLittleEndian);
        header.capturedSize = readFileUint32(body, 12, isLittleEndian);
        header.originalSize = readFileUint32(body, 16, isLittleEndian);
        return header;
    }

    /// How much of the frame is in the file.
    /// @param snapLength  of the interface; 0 for none
    [[nodiscard]] std::uint32_t frameSize(std::uint32_t snapLength) const {
        if (capturedSize) {
            return *capturedSize;
        }
        return snapLength == 0 ? originalSize : std::min(originalSize, snapLength);
    }
};

/// The fixed part of a block of statistics; options follow.
struct StatisticsHeader {
    static constexpr std::size_t kSize = 12;

    std::uint32_t interface = 0;

    /// @pre `body` holds at least `kSize` octets
    [[nodiscard]] static StatisticsHeader read(Octets body, bool isLittleEndian) {
        return {.interface = readFileUint32(body, 0, isLittleEndian)};
    }
};

/// Codes of the options that are read.
inline constexpr std::uint16_t kOptionEnd = 0;
inline constexpr std::uint16_t kOptionInterfaceName = 2;
inline constexpr std::uint16_t kOptionTimeResolution = 9;
inline constexpr std::uint16_t kOptionTimeOffset = 14;
inline constexpr std::uint16_t kOptionPacketDropped = 4;
inline constexpr std::uint16_t kOptionInterfaceReceived = 4;
inline constexpr std::uint16_t kOptionInterfaceDropped = 5;
inline constexpr std::uint16_t kOptionSystemDropped = 7;

/// Walks the options of a block up to their end mark, which may be missing.
/// @param options  the body of the block after its fixed part and the frame
/// @param take     `void take(std::uint16_t code, Octets value)`
/// @return false where an option is cut off by the end of the block
template <typename Take>
bool forEachOption(Octets options, bool isLittleEndian, Take const& take) {
    constexpr std::size_t headerSize = 4;
    while (options.size() >= headerSize) {
        std::uint16_t const code = readFileUint16(options, 0, isLittleEndian);
        std::uint16_t const size = readFileUint16(options, 2, isLittleEndian);
        if (code == kOptionEnd) {
            return true;
        }
        options = options.subspan(headerSize);
        if (size > options.size()) {
            return false;
        }
        take(code, options.first(size));
        options = options.subspan(std::min<std::size_t>(options.size(), padded(size)));
    }
    return options.empty();
}

/// The value of an option that is a number of eight octets.
/// @return nullopt for one of another size
[[nodiscard]] inline std::optional<std::uint64_t> readOptionNumber(Octets value,
                                                                   bool isLittleEndian) {
    if (value.size() != sizeof(std::uint64_t)) {
        return std::nullopt;
    }
    return readFileUint64(value, 0, isLittleEndian);
}

}  // namespace TalIec61850Parser::wire
