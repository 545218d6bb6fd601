#include "tools/inspect/FrameHeader.hpp"

#include <algorithm>

namespace TalIec61850Tools {

namespace {

using Frame = std::span<std::uint8_t const>;

constexpr std::uint16_t kEtherTypeVlan = 0x8100;
constexpr std::uint16_t kEtherTypeHsr = 0x892F;
constexpr std::uint16_t kPrpSuffix = 0x88FB;

std::uint16_t readUint16(Frame frame, std::size_t position) {
    return static_cast<std::uint16_t>(frame[position] << 8U | frame[position + 1]);
}

std::uint8_t highNibble(std::uint16_t word) { return static_cast<std::uint8_t>(word >> 12U); }

/// Reads a frame front to back; `size` of the header is how far.
class HeaderReader {
public:
    HeaderReader(Frame frame, FrameHeader& header) : frame_(frame), header_(header) {}

    void read() {
        takeAddress(header_.destination);
        takeAddress(header_.source);
        takeWord(header_.etherType);
        if (header_.etherType == kEtherTypeVlan) {
            takeVlan();
        }
        if (header_.etherType == kEtherTypeHsr) {
            takeHsr();
        }
        if (header_.etherType == kEtherTypeGoose || header_.etherType == kEtherTypeSv) {
            takeWord(header_.appId);
            takeWord(header_.length);
            takeWord(header_.reserved1);
            takeWord(header_.reserved2);
        }
    }

private:
    /// Whether so many octets are left; the rest is passed over where they are not.
    bool has(std::size_t octets) {
        if (frame_.size() - header_.size >= octets) {
            return true;
        }
        header_.size = frame_.size();
        return false;
    }

    void takeAddress(std::optional<MacAddress>& address) {
        if (!has(std::tuple_size_v<MacAddress>)) {
            return;
        }
        address.emplace();
        std::copy_n(frame_.begin() + static_cast<std::ptrdiff_t>(header_.size), address->size(),
                    address->begin());
        header_.size += address->size();
    }

    void takeWord(std::optional<std::uint16_t>& word) {
        word.reset();
        if (has(2)) {
            word = readUint16(frame_, header_.size);
            header_.size += 2;
        }
    }

    void takeVlan() {
        std::optional<std::uint16_t> word;
        takeWord(word);
        if (word) {
            header_.vlan = {.priority = static_cast<std::uint8_t>(*word >> 13U),
                            .dei = (*word & 0x1000U) != 0,
                            .id = static_cast<std::uint16_t>(*word & 0x0FFFU)};
        }
        takeWord(header_.etherType);
    }

    void takeHsr() {
        std::optional<std::uint16_t> size;
        std::optional<std::uint16_t> sequence;
        takeWord(size);
        takeWord(sequence);
        if (sequence) {
            header_.hsr = {.path = highNibble(*size),
                           .lsduSize = static_cast<std::uint16_t>(*size & 0x0FFFU),
                           .sequence = *sequence};
        }
        takeWord(header_.etherType);
    }

    Frame frame_;
    FrameHeader& header_;
};

std::optional<PrpTrailer> readPrpTrailer(Frame behindHeader) {
    if (behindHeader.size() < kPrpTrailerSize) {
        return std::nullopt;
    }
    Frame const trailer = behindHeader.last(kPrpTrailerSize);
    if (readUint16(trailer, 4) != kPrpSuffix) {
        return std::nullopt;
    }
    std::uint16_t const size = readUint16(trailer, 2);
    return PrpTrailer{.sequence = readUint16(trailer, 0),
                      .lanId = highNibble(size),
                      .lsduSize = static_cast<std::uint16_t>(size & 0x0FFFU)};
}

}  // namespace

FrameHeader readFrameHeader(std::span<std::uint8_t const> frame) {
    FrameHeader header;
    HeaderReader(frame, header).read();
    header.prp = readPrpTrailer(frame.subspan(header.size));
    return header;
}

}  // namespace TalIec61850Tools
