#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "support/Bytes.hpp"

namespace TalFuzz {

/// The octets a fuzzer is given, taken one after the other; zeros once there are none left.
class FuzzInput {
public:
    /// @param octets  outlive this
    explicit FuzzInput(std::span<std::uint8_t const> octets) : octets_(octets) {}
    explicit FuzzInput(TalTest::Bytes&& octets) = delete;

    [[nodiscard]] bool isEmpty() const { return octets_.empty(); }

    std::uint8_t octet() {
        if (octets_.empty()) return 0;
        std::uint8_t const first = octets_.front();
        octets_ = octets_.subspan(1);
        return first;
    }

    std::uint16_t number() {
        std::uint8_t const high = octet();
        return static_cast<std::uint16_t>(high << 8U | octet());
    }

    /// As many octets, or those that are left.
    TalTest::Bytes octets(std::size_t count) {
        auto const taken = octets_.first(std::min(count, octets_.size()));
        octets_ = octets_.subspan(taken.size());
        return {taken.begin(), taken.end()};
    }

private:
    std::span<std::uint8_t const> octets_;
};

}  // namespace TalFuzz
