#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

#include "tools/output/NineDigits.hpp"
#include "tools/output/ShortText.hpp"

namespace TalIec61850Tools {

/// A text that is made of many short pieces, and made anew for each row: what is appended is
/// written in place, and memory is kept. With a string, the calls take longer than the characters.
class TextLine {
public:
    [[nodiscard]] std::string_view view() const { return {memory_.data(), size_}; }

    void clear() { size_ = 0; }

    /// @pre something was appended
    void replaceFirst(char c) { memory_.front() = c; }

    void append(char c) {
        *room(1) = c;
        ++size_;
    }

    /// @param text  not of this line
    void append(std::string_view text) {
        std::copy_n(text.data(), text.size(), room(text.size()));
        size_ += text.size();
    }

    void append(ShortText const& text) {
        auto const& octets = text.octets();
        std::memcpy(room(octets.size()), octets.data(), octets.size());
        size_ += text.size();
    }

    /// The digits of a number.
    void appendNumber(std::uint64_t number) {
        // Halves are divided faster: most numbers have but one, and times two.
        auto const half = static_cast<std::uint32_t>(number);
        std::uint64_t const billions = number / kBillion;
        auto const upperHalf = static_cast<std::uint32_t>(billions);
        if (half == number) {
            appendDigits(half);
        } else if (upperHalf == billions) {
            appendDigits(upperHalf);
            writeNineDigits(room(kNineDigits), static_cast<std::uint32_t>(number % kBillion));
            size_ += kNineDigits;
        } else {
            appendDigits(number);
        }
    }

    void appendNumber(std::int64_t number) {
        auto const unsignedNumber = static_cast<std::uint64_t>(number);
        if (number < 0) {
            append('-');
        }
        appendNumber(number < 0 ? 0 - unsignedNumber : unsignedNumber);
    }

private:
    static constexpr std::size_t kNineDigits = 9;

    void appendDigits(std::unsigned_integral auto number) {
        constexpr std::size_t kMostDigits = std::numeric_limits<decltype(number)>::digits10 + 1;
        char* const begin = room(kMostDigits);
        char* const end = std::to_chars(begin, begin + kMostDigits, number).ptr;
        size_ += static_cast<std::size_t>(end - begin);
    }

    /// The end of the text, where there is room for so many characters.
    [[nodiscard]] char* room(std::size_t characters) {
        if (memory_.size() - size_ < characters) {
            grow(characters);
        }
        return memory_.data() + size_;
    }

    void grow(std::size_t characters) {
        constexpr std::size_t kAtFirst = 512;
        memory_.resize(std::max({kAtFirst, 2 * memory_.size(), size_ + characters}));
    }

    std::vector<char> memory_;
    std::size_t size_ = 0;
};

}  // namespace TalIec61850Tools
