#pragma once

#include <bit>
#include <cstdint>

namespace TalIec61850Parser {

/// Turns integers that were read from a file in a declared byte order into the host's order.
///
/// Each `convert` operation takes a value as it is in the file and whether it was stored least
/// significant octet first, and reverses its octets exactly when that is not the host's order.
/// Signed values are reversed as bit patterns of their own width.
class BytesConverter {
public:
    /// An unsigned integer of 16 bits.
    [[nodiscard]] static constexpr std::uint16_t convertUint16(std::uint16_t value,
                                                               bool isLittleEndian) {
        return isLittleEndian == _isSystemLittleEndian() ? value : _swapBytes16(value);
    }
    /// A signed integer of 16 bits.
    [[nodiscard]] static constexpr std::int16_t convertInt16(std::int16_t value,
                                                             bool isLittleEndian) {
        return std::bit_cast<std::int16_t>(
            convertUint16(std::bit_cast<std::uint16_t>(value), isLittleEndian));
    }
    /// An unsigned integer of 32 bits.
    [[nodiscard]] static constexpr std::uint32_t convertUint32(std::uint32_t value,
                                                               bool isLittleEndian) {
        return isLittleEndian == _isSystemLittleEndian() ? value : _swapBytes32(value);
    }
    /// A signed integer of 32 bits.
    [[nodiscard]] static constexpr std::int32_t convertInt32(std::int32_t value,
                                                             bool isLittleEndian) {
        return std::bit_cast<std::int32_t>(
            convertUint32(std::bit_cast<std::uint32_t>(value), isLittleEndian));
    }
    /// An unsigned integer of 64 bits.
    [[nodiscard]] static constexpr std::uint64_t convertUint64(std::uint64_t value,
                                                               bool isLittleEndian) {
        return isLittleEndian == _isSystemLittleEndian() ? value : _swapBytes64(value);
    }
    /// A signed integer of 64 bits.
    [[nodiscard]] static constexpr std::int64_t convertInt64(std::int64_t value,
                                                             bool isLittleEndian) {
        return std::bit_cast<std::int64_t>(
            convertUint64(std::bit_cast<std::uint64_t>(value), isLittleEndian));
    }

    // The building blocks, public like every operation of the library.

    /// Whether the host stores the least significant octet of an integer first.
    [[nodiscard]] static constexpr bool _isSystemLittleEndian() {
        return std::endian::native == std::endian::little;
    }
    /// The two octets of an integer in reverse order.
    [[nodiscard]] static constexpr std::uint16_t _swapBytes16(std::uint16_t value) {
        return static_cast<std::uint16_t>((value << 8U) | (value >> 8U));
    }
    /// The four octets of an integer in reverse order.
    [[nodiscard]] static constexpr std::uint32_t _swapBytes32(std::uint32_t value) {
        return (std::uint32_t{_swapBytes16(static_cast<std::uint16_t>(value))} << 16U) |
               _swapBytes16(static_cast<std::uint16_t>(value >> 16U));
    }
    /// The eight octets of an integer in reverse order.
    [[nodiscard]] static constexpr std::uint64_t _swapBytes64(std::uint64_t value) {
        return (std::uint64_t{_swapBytes32(static_cast<std::uint32_t>(value))} << 32U) |
               _swapBytes32(static_cast<std::uint32_t>(value >> 32U));
    }
};

}  // namespace TalIec61850Parser
