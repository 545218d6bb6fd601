#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace TalIec61850Tools {

/// A text that is made for one cell, such as a time; it is kept in place. It holds letters, digits
/// and such marks as no format has to escape.
class ShortText {
public:
    static constexpr std::size_t kCapacity = 39;
    /// The text, what may follow it, and its size: copied without a call, as it is of one size.
    using Octets = std::array<char, kCapacity + 1>;

    ShortText() = default;
    /// @param text  what is beyond the capacity is left out
    explicit ShortText(std::string_view text) {
        auto const size = std::min(text.size(), kCapacity);
        std::copy_n(text.begin(), size, octets_.begin());
        octets_.back() = static_cast<char>(size);
    }
    /// @param octets  hold the text at their start
    /// @param size    of the text, up to the capacity
    ShortText(Octets const& octets, std::size_t size) : octets_(octets) {
        octets_.back() = static_cast<char>(size);
    }

    [[nodiscard]] std::string_view view() const { return {octets_.data(), size()}; }
    [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(octets_.back()); }
    [[nodiscard]] Octets const& octets() const { return octets_; }

private:
    Octets octets_{};
};

}  // namespace TalIec61850Tools
