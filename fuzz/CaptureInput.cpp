#include "fuzz/CaptureInput.hpp"

#include <algorithm>

#include "support/CaptureFile.hpp"

namespace TalFuzz {

using namespace TalTest;

CaptureInput captureInput(std::span<std::uint8_t const> octets) {
    FuzzInput input(octets);
    Bytes choice = input.octets(kFilterChoiceSize);
    choice.resize(kFilterChoiceSize);
    return {std::move(choice), input.octets(octets.size())};
}

Bytes withoutLongClaim(Bytes capture) {
    constexpr std::size_t longest = std::size_t{64} << 10U;
    constexpr std::size_t inclLenOffset = 8;
    bool const isLittle = !capture.empty() && (capture[0] == 0xD4 || capture[0] == 0x4D);
    std::size_t at = captureHeaderSize;
    while (at + recordHeaderSize <= capture.size()) {
        auto const field = capture.begin() + static_cast<std::ptrdiff_t>(at + inclLenOffset);
        if (isLittle) std::reverse(field, field + 4);
        std::size_t claimed = 0;
        for (int i = 0; i < 4; ++i) claimed = claimed << 8U | field[i];
        std::size_t const there = capture.size() - at - recordHeaderSize;
        if (claimed > there + longest) {
            Bytes const shorter = bigEndian(there + claimed % longest, 4);
            std::copy(shorter.begin(), shorter.end(), field);
        }
        if (isLittle) std::reverse(field, field + 4);
        at += recordHeaderSize + claimed;
    }
    return capture;
}

}  // namespace TalFuzz
