#pragma once

// Internal: the classic capture format: magics, file header, record headers and their times.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace TalIec61850Parser::wire {

/// The header of a classic capture file.
inline constexpr std::size_t kGlobalHeaderSize = 24;

/// Four octets that name a format, as they are in the file.
using Magic = std::array<std::uint8_t, 4>;

/// The first octets of a next-generation capture.
inline constexpr Magic kNextGenerationMagic = {0x0A, 0x0D, 0x0D, 0x0A};
/// Offset in a next-generation capture of the octets that tell its byte order.
inline constexpr std::size_t kByteOrderMarkOffset = 8;

/// How the records of a classic capture are written.
struct CaptureVariant {
    bool isNanosecond = false;
    bool isLittleEndian = false;

    friend bool operator==(CaptureVariant const&, CaptureVariant const&) = default;
};

/// @return nullopt for a magic that is none of the four of classic captures
[[nodiscard]] constexpr std::optional<CaptureVariant> findVariant(Magic const& magic) {
    struct Entry {
        Magic magic;
        CaptureVariant variant;
    };
    constexpr std::array<Entry, 4> variants = {{
        {{0xD4, 0xC3, 0xB2, 0xA1}, {.isNanosecond = false, .isLittleEndian = true}},
        {{0xA1, 0xB2, 0xC3, 0xD4}, {.isNanosecond = false, .isLittleEndian = false}},
        {{0x4D, 0x3C, 0xB2, 0xA1}, {.isNanosecond = true, .isLittleEndian = true}},
        {{0xA1, 0xB2, 0x3C, 0x4D}, {.isNanosecond = true, .isLittleEndian = false}},
    }};
    for (auto const& entry : variants) {
        if (entry.magic == magic) {
            return entry.variant;
        }
    }
    return std::nullopt;
}

/// What a file is by its first octets.
struct CaptureKind {
    /// Set when the file is read as a classic capture.
    std::optional<CaptureVariant> variant;
    bool isNextGeneration = false;

    [[nodiscard]] bool isCapture() const { return variant.has_value() || isNextGeneration; }
};

/// Octets of a file that `recogniseCapture` looks at, at most.
inline constexpr std::size_t kCaptureStartSize = kByteOrderMarkOffset + sizeof(Magic);

/// Tells a classic capture from a next-generation one and from anything else.
///
/// Deliberate: a file with the next-generation magic is looked at again where such a file has its
/// byte order mark. A classic magic there makes it a classic capture.
/// @param magicAt  `Magic magicAt(std::size_t fileOffset)`: zeros where the file has no octets;
///                 called once or twice, with rising offsets
template <typename MagicAt>
[[nodiscard]] CaptureKind recogniseCapture(MagicAt const& magicAt) {
    Magic const magic = magicAt(std::size_t{0});
    if (magic != kNextGenerationMagic) {
        return {.variant = findVariant(magic), .isNextGeneration = false};
    }
    auto const variant = findVariant(magicAt(kByteOrderMarkOffset));
    return {.variant = variant, .isNextGeneration = !variant};
}

/// Whether numbers of this byte order are as the processor has them.
[[nodiscard]] constexpr bool isHostOrder(bool isLittleEndian) {
    return isLittleEndian == (std::endian::native == std::endian::little);
}

/// A number of a file header or record header, in host byte order.
/// @pre four octets are there
[[nodiscard]] inline std::uint32_t readFileUint32(Octets octets, std::size_t index,
                                                  bool isLittleEndian) {
    std::uint32_t stored = 0;
    std::memcpy(&stored, octets.data() + index, sizeof stored);
    return isHostOrder(isLittleEndian) ? stored : __builtin_bswap32(stored);
}

/// What the header of a classic capture file says besides its magic, in host byte order.
struct GlobalHeader {
    /// The most octets of a frame that are captured.
    std::uint32_t snapLength = 0;
    /// By the registry of link types. The octets above it tell of check sequences.
    std::uint16_t linkType = 0;

    /// @pre `octets` holds at least `kGlobalHeaderSize` octets
    [[nodiscard]] static GlobalHeader read(Octets octets, bool isLittleEndian) {
        return {.snapLength = readFileUint32(octets, 16, isLittleEndian),
                .linkType = static_cast<std::uint16_t>(readFileUint32(octets, 20, isLittleEndian))};
    }
};

/// The header of a capture record in host byte order.
struct RecordHeader {
    static constexpr std::size_t kSize = 16;

    std::uint32_t tsSec = 0;
    /// The fraction of the second in the file's own unit.
    std::uint32_t tsUsec = 0;
    /// Captured octets that follow the header.
    std::uint32_t inclLen = 0;
    /// Octets on the wire.
    std::uint32_t origLen = 0;

    /// @pre `octets` holds at least `kSize` octets
    [[nodiscard]] static RecordHeader read(Octets octets, bool isLittleEndian) {
        return {.tsSec = readFileUint32(octets, 0, isLittleEndian),
                .tsUsec = readFileUint32(octets, 4, isLittleEndian),
                .inclLen = readFileUint32(octets, 8, isLittleEndian),
                .origLen = readFileUint32(octets, 12, isLittleEndian)};
    }
};

/// The time of a record in nanoseconds since 1970, below 2^62. A fraction of a second or more is
/// carried over.
[[nodiscard]] constexpr std::uint64_t exactNanoseconds(std::uint32_t seconds,
                                                       std::uint32_t fraction, bool isNanosecond) {
    return std::uint64_t{seconds} * 1'000'000'000U +
           std::uint64_t{fraction} * (isNanosecond ? 1U : 1000U);
}

/// The fraction of a record's time in nanoseconds. Deliberate: in 32 bits, and not normalised.
[[nodiscard]] constexpr std::uint32_t toNanoseconds(std::uint32_t fraction, bool isNanosecond) {
    constexpr std::uint32_t nanosecondsPerMicrosecond = 1000;
    return fraction * (isNanosecond ? 1U : nanosecondsPerMicrosecond);
}

}  // namespace TalIec61850Parser::wire
