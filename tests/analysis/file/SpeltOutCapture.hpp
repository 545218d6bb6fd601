#pragma once

#include "support/Bytes.hpp"

namespace TalIec61850Analysis {

/// A next-generation capture octet by octet, made by no code: one frame of 14 octets, captured at
/// 1700000000.000000005, with 3 packets lost before it.
[[nodiscard]] inline TalTest::Bytes speltOutCapture() {
    return {// A section, of unknown length.
            0x0A, 0x0D, 0x0D, 0x0A, 0x1C, 0, 0, 0, 0x4D, 0x3C, 0x2B, 0x1A, 1, 0, 0, 0,  //
            0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x1C, 0, 0, 0,
            // An interface of nanoseconds.
            1, 0, 0, 0, 0x20, 0, 0, 0, 1, 0, 0, 0, 0, 0, 4, 0,  //
            9, 0, 1, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0x20, 0, 0, 0,
            // The packet, its frame, its options.
            6, 0, 0, 0, 0x40, 0, 0, 0, 0, 0, 0, 0,                               //
            0xFE, 0x9C, 0x97, 0x17, 5, 0, 0x2A, 0x36, 14, 0, 0, 0, 14, 0, 0, 0,  //
            0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 0, 0,                  //
            4, 0, 8, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x40, 0, 0, 0};
}

/// Its frame.
[[nodiscard]] inline TalTest::Bytes speltOutFrame() {
    return {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
}

}  // namespace TalIec61850Analysis
