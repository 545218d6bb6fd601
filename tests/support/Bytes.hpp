#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace TalTest {

/// What tests build and compare: frames, elements, whole captures.
using Bytes = std::vector<std::uint8_t>;

/// Octets that are put after others: those of a call's arguments, without a copy. Captures are made
/// of many of these, by code that is mostly not optimised.
class Part {
public:
    // Octets are parts without a word.
    Part(Bytes const& octets) : octets_(octets) {}
    Part(std::string_view characters)
        : octets_(reinterpret_cast<std::uint8_t const*>(characters.data()), characters.size()) {}
    Part(std::initializer_list<std::uint8_t> octets) : octets_(octets.begin(), octets.size()) {}

    [[nodiscard]] std::uint8_t const* data() const { return octets_.data(); }
    [[nodiscard]] std::size_t size() const { return octets_.size(); }

private:
    std::span<std::uint8_t const> octets_;
};

/// Puts `more`, which is not of `out`, after what `out` holds.
inline void append(Bytes& out, Part more) {
    std::size_t const size = out.size();
    out.resize(size + more.size());
    std::copy_n(more.data(), more.size(), out.data() + size);
}

/// Puts the parts one after the other.
[[nodiscard]] inline Bytes concat(std::initializer_list<Part> parts) {
    Bytes out;
    std::size_t size = 0;
    for (Part const& part : parts) {
        size += part.size();
    }
    out.reserve(size);
    for (Part const& part : parts) {
        append(out, part);
    }
    return out;
}

/// The low `octets` octets of `value`, most significant first; zeros lead where there are more than
/// eight.
[[nodiscard]] inline Bytes bigEndian(std::uint64_t value, std::size_t octets) {
    Bytes out(octets);
    for (std::size_t i = octets; i-- > 0; value >>= 8) {
        out[i] = static_cast<std::uint8_t>(value);
    }
    return out;
}

/// The octets of a text, without a terminating zero.
[[nodiscard]] inline Bytes text(std::string_view characters) {
    return Bytes(characters.begin(), characters.end());
}

/// `count` times the same octet.
[[nodiscard]] inline Bytes repeat(std::uint8_t octet, std::size_t count) {
    return Bytes(count, octet);
}

/// Where `part` first is in `whole`; nullopt when it does not.
[[nodiscard]] inline std::optional<std::size_t> find(Bytes const& whole, Bytes const& part) {
    auto const found = std::search(whole.begin(), whole.end(), part.begin(), part.end());
    if (found == whole.end() && !part.empty()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - whole.begin());
}

/// The first `size` octets of `whole`, all of them when there are fewer.
[[nodiscard]] inline Bytes prefix(Bytes const& whole, std::size_t size) {
    return Bytes(whole.begin(),
                 whole.begin() + static_cast<std::ptrdiff_t>(std::min(size, whole.size())));
}

}  // namespace TalTest
