#include "tools/record/QualityBits.hpp"

#include <array>

namespace TalIec61850Tools {

std::span<QualityBit const> qualityBits() {
    static constexpr std::array<QualityBit, 14> kBits = {{
        {"invalid", 0x3, 0x1},
        {"questionable", 0x3, 0x3},
        {"test", 0x800, 0x800},
        {"overflow", 0x4, 0x4},
        {"outOfRange", 0x8, 0x8},
        {"badReference", 0x10, 0x10},
        {"oscillatory", 0x20, 0x20},
        {"failure", 0x40, 0x40},
        {"oldData", 0x80, 0x80},
        {"inconsistent", 0x100, 0x100},
        {"inaccurate", 0x200, 0x200},
        {"substituted", 0x400, 0x400},
        {"operatorBlocked", 0x1000, 0x1000},
        {"derived", 0x2000, 0x2000},
    }};
    return kBits;
}

}  // namespace TalIec61850Tools
