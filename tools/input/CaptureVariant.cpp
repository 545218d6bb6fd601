#include "tools/input/CaptureVariant.hpp"

#include <algorithm>
#include <array>

namespace TalIec61850Tools {

namespace {

using Magic = std::array<std::uint8_t, 4>;

struct ClassicMagic {
    Magic magic;
    CaptureVariant variant;
};

constexpr std::array<ClassicMagic, 4> kClassicMagics = {{
    {{0xD4, 0xC3, 0xB2, 0xA1}, {.isNanosecond = false, .isLittleEndian = true}},
    {{0xA1, 0xB2, 0xC3, 0xD4}, {.isNanosecond = false, .isLittleEndian = false}},
    {{0x4D, 0x3C, 0xB2, 0xA1}, {.isNanosecond = true, .isLittleEndian = true}},
    {{0xA1, 0xB2, 0x3C, 0x4D}, {.isNanosecond = true, .isLittleEndian = false}},
}};
constexpr Magic kNextGenerationMagic = {0x0A, 0x0D, 0x0D, 0x0A};
constexpr std::size_t kByteOrderOffset = 8;

Magic magicAt(std::span<std::uint8_t const> octets) {
    Magic magic{};
    std::copy_n(octets.begin(), magic.size(), magic.begin());
    return magic;
}

std::optional<CaptureVariant> findVariant(Magic const& magic) {
    for (auto const& classic : kClassicMagics) {
        if (classic.magic == magic) {
            return classic.variant;
        }
    }
    return std::nullopt;
}

}  // namespace

CaptureKind recogniseCapture(std::span<std::uint8_t const, kCaptureStartSize> start) {
    if (magicAt(start) != kNextGenerationMagic) {
        return {.variant = findVariant(magicAt(start)), .isNextGeneration = false};
    }
    // The library looks for a classic magic there too.
    auto const variant = findVariant(magicAt(start.subspan(kByteOrderOffset)));
    return {.variant = variant, .isNextGeneration = !variant};
}

}  // namespace TalIec61850Tools
