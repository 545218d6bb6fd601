#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "support/Bytes.hpp"

namespace TalTest {

/// A next-generation capture built in memory, block by block. Numbers are written in the byte order
/// of the section that was started last.
class PcapngMaker {
public:
    static constexpr std::uint64_t kUnknownLength = ~std::uint64_t{0};

    /// A packet as its block has it.
    struct Packet {
        std::uint32_t interface = 0;
        std::uint64_t time = 0;
        Bytes frame = {};
        /// Other sizes than that of the frame.
        std::optional<std::uint32_t> capturedSize = {};
        std::optional<std::uint32_t> originalSize = {};
        /// Of an old packet block.
        std::uint16_t dropped = 0xFFFF;
        /// Whole options, see option().
        Bytes options = {};
    };

    /// Starts a section.
    /// @param length  of what follows in the section
    PcapngMaker& section(bool isLittleEndian = true, std::uint64_t length = kUnknownLength,
                         std::uint16_t major = 1);

    /// Describes the next interface of the section.
    PcapngMaker& interface(std::uint16_t linkType = 1, std::uint32_t snapLength = 0,
                           Bytes const& options = {});

    PcapngMaker& packet(Packet const& packet);
    PcapngMaker& oldPacket(Packet const& packet);
    /// A packet without a time, of interface 0.
    /// @param originalSize  that of the frame if it is not given
    PcapngMaker& simplePacket(Bytes const& frame, std::optional<std::uint32_t> originalSize = {});
    PcapngMaker& statistics(std::uint32_t interface, Bytes const& options);

    /// A block of any type. The body is filled up with zeros to a multiple of four octets.
    PcapngMaker& block(std::uint32_t type, Bytes body);
    /// Octets as they are.
    PcapngMaker& raw(Bytes const& octets);

    /// An option in the byte order of the section.
    [[nodiscard]] Bytes option(std::uint16_t code, Bytes const& value) const;
    /// One that is a number of eight octets.
    [[nodiscard]] Bytes numberOption(std::uint16_t code, std::uint64_t value) const;
    /// The mark after the last option.
    [[nodiscard]] static Bytes endOfOptions() { return Bytes(4); }
    /// The options of an interface: unit of time, offset of time, name.
    [[nodiscard]] Bytes timeOptions(std::uint8_t resolution, std::int64_t offset = 0,
                                    std::string_view name = "") const;

    /// A number in the byte order of the section.
    [[nodiscard]] Bytes number(std::uint64_t value, std::size_t octets) const;

    /// Where the next block will be.
    [[nodiscard]] std::uint64_t position() const { return bytes_.size(); }
    [[nodiscard]] Bytes const& bytes() const { return bytes_; }

private:
    [[nodiscard]] Bytes timeAndSizes(Packet const& packet) const;

    bool isLittleEndian_ = true;
    Bytes bytes_;
};

}  // namespace TalTest
