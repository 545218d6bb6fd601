#pragma once

// Internal: where things are in a row of binary data.

#include <TalIec61850Analysis/comtrade/ComtradeRecord.hpp>
#include <cstddef>

namespace TalIec61850Analysis::detail {

/// A row of binary data: sample number, stamp, samples, words of 16 digital channels each.
class RowShape {
public:
    /// Where the samples are in the row, in octets.
    static constexpr std::size_t kSamplesOffset = 8;
    /// How many digital channels share a word.
    static constexpr std::size_t kDigitalsPerWord = 16;
    /// The octets of such a word.
    static constexpr std::size_t kWordSize = 2;

    explicit RowShape(ComtradeRecord const& record) noexcept
        : sampleSize_(record.format.data == ComtradeData::binary32 ? 4 : 2),
          analogs_(record.analogs.size()),
          words_((record.digitals.size() + kDigitalsPerWord - 1) / kDigitalsPerWord) {}

    /// Where a channel's sample is in the row.
    [[nodiscard]] std::size_t sampleOffset(std::size_t analog) const noexcept {
        return kSamplesOffset + sampleSize_ * analog;
    }
    /// Where a word is in the row.
    [[nodiscard]] std::size_t wordOffset(std::size_t word) const noexcept {
        return sampleOffset(analogs_) + kWordSize * word;
    }
    /// How many words there are.
    [[nodiscard]] std::size_t words() const noexcept { return words_; }
    /// The octets of a row.
    [[nodiscard]] std::size_t size() const noexcept { return wordOffset(words_); }

private:
    std::size_t sampleSize_;
    std::size_t analogs_;
    std::size_t words_;
};

}  // namespace TalIec61850Analysis::detail
