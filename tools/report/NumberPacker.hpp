#pragma once

#include <cstdint>
#include <deque>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// Puts numbers into octets, exactly, in few bits, and tells how the page reads them.
///
/// They are stored as words of 32 bits: whole numbers of so many as they are, others as the bits of
/// float32 where these hold them, or as both halves of float64. Of each word, the difference to a
/// prediction is stored, even ones for differences from 0 up, odd ones for those below, by a Rice
/// code: for every 128 words, five bits tell how many low bits are stored as they are. The rest is
/// so many ones and a zero; where that were 24 ones or more, 24 ones and the 32 bits themselves.
class NumberPacker {
public:
    /// @param octets  to which all is appended; must outlive this
    explicit NumberPacker(std::string& octets) : octets_(octets) {}

    /// Appends numbers that have to do with no others.
    /// @param numbers  none for an empty list
    /// @return an object: kind (int32, float32 or float64); words: objects of at (octets from the
    ///         start), count, shift, factors, otherFactors
    [[nodiscard]] nlohmann::ordered_json pack(std::span<double const> numbers);

    /// Appends one channel after the other of the same samples: where whole numbers of as many
    /// samples came before, those of the last three are looked at too, the last one first.
    /// @return see `pack`
    [[nodiscard]] nlohmann::ordered_json packChannel(std::span<double const> numbers);

private:
    std::string& octets_;
    /// The last channels, the last one first.
    std::deque<std::vector<std::int32_t>> channels_;
};

}  // namespace TalIec61850Tools
