#pragma once

#include <cstdint>
#include <string>

namespace TalIec61850Tools {

/// Appends bits to octets, the highest bit of each octet first.
class BitWriter {
public:
    /// @param octets  must outlive the writer
    explicit BitWriter(std::string& octets) : octets_(octets) {}

    /// Appends the lowest bits of a number, the highest of them first.
    /// @param count  at most 32
    void write(std::uint32_t bits, unsigned count) {
        pending_ =
            pending_ << count | (count == 0 ? 0 : bits & (~std::uint32_t{0} >> (32U - count)));
        pendingBits_ += count;
        while (pendingBits_ >= 8) {
            pendingBits_ -= 8;
            octets_ += static_cast<char>(pending_ >> pendingBits_ & 0xFFU);
        }
    }

    /// Fills the last octet with zeros. To be called once, after the last bit.
    void finish() {
        if (pendingBits_ > 0) {
            write(0, 8 - pendingBits_);
        }
    }

private:
    std::string& octets_;
    std::uint64_t pending_ = 0;
    unsigned pendingBits_ = 0;
};

}  // namespace TalIec61850Tools
