#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <cstdint>
#include <string_view>

namespace TalIec61850Analysis {

/// An edition of COMTRADE, IEC 60255-24 (IEEE C37.111).
enum class ComtradeEdition : std::uint16_t { of1999 = 1999, of2013 = 2013 };

/// How the data file holds samples. Binary is 16 bits wide, binary32 is 32; binary32 is in the
/// edition of 2013 only.
enum class ComtradeData : std::uint8_t { ascii, binary, binary32 };

/// The name of a kind of data in configuration files: ASCII, BINARY, BINARY32.
/// @param data  any
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::string_view comtradeName(ComtradeData data) noexcept;

/// Edition and data together: what the numbers that are stored can be depends on both.
struct ComtradeFormat {
    /// The edition whose rules the files follow.
    ComtradeEdition edition = ComtradeEdition::of2013;
    /// How samples are stored.
    ComtradeData data = ComtradeData::binary32;

    /// Member by member.
    friend bool operator==(ComtradeFormat const&, ComtradeFormat const&) = default;
};

/// The numbers that a format stores.
struct ComtradeRange {
    /// The lowest number that a sample can be stored as.
    std::int64_t lowest = 0;
    /// The highest number that a sample can be stored as.
    std::int64_t highest = 0;
    /// What is stored where there is no sample; not in the range.
    std::int64_t missing = 0;

    /// Whether a number is from the lowest to the highest.
    [[nodiscard]] constexpr bool contains(std::int64_t number) const noexcept {
        return lowest <= number && number <= highest;
    }

    /// Member by member.
    friend bool operator==(ComtradeRange const&, ComtradeRange const&) = default;
};

/// The numbers that a format stores. In ASCII the missing mark is 99999 in both editions, since
/// programs fail on an empty field; so the range ends below it, and is not symmetric.
/// @param format  any; binary32 has the same range in each edition
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT ComtradeRange
comtradeRange(ComtradeFormat format) noexcept;

}  // namespace TalIec61850Analysis
