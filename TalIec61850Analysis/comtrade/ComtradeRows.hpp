#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRecord.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <variant>

namespace TalIec61850Analysis {

/// Samples of one channel, of any of these types.
using ComtradeSamples = std::variant<std::span<std::int32_t const>, std::span<std::int64_t const>,
                                     std::span<float const>, std::span<double const>>;

/// Consecutive samples of an analog channel.
struct ComtradeAnalogColumn {
    /// One for each row; where it is marked as missing, its value does not matter.
    ComtradeSamples samples;
    /// Not 0 for each row whose sample is missing; may be empty where none is.
    std::span<std::uint8_t const> missing;
};

/// Consecutive states of a digital channel: 0, or anything else for 1.
using ComtradeDigitalColumn = std::span<std::uint8_t const>;

/// What an analog channel's samples lost on their way into the data.
struct ComtradeLosses {
    /// How many samples were beyond the range of the format, and are stored as its end.
    std::uint64_t clamped = 0;
    /// How many samples were no number (NaN), and are stored as missing.
    std::uint64_t notANumber = 0;

    /// Member by member.
    friend bool operator==(ComtradeLosses const&, ComtradeLosses const&) = default;
};

/// Encodes the data of a record: what its data file (dat) holds, or the section DAT. Rows are added
/// in blocks of columns, of any size. Memory is taken when this is made, and not for rows.
class ComtradeRows {
public:
    /// Takes the encoded octets, in sequence, in pieces of about 128 KiB; a piece is valid until it
    /// returns. What it throws reaches the caller of `add` or `finish`; no more rows may be added
    /// then.
    using Take = std::function<void(std::span<std::uint8_t const>)>;

    /// @param record  one for which `brokenLimit` is not set; it is not kept
    /// @param take    called by `add` and `finish`
    /// @throws std::invalid_argument  the record cannot be written
    TALIEC61850ANALYSIS_EXPORT ComtradeRows(ComtradeRecord const& record, Take take);
    ComtradeRows(ComtradeRows const&) = delete;
    ComtradeRows& operator=(ComtradeRows const&) = delete;
    /// Takes nothing more: without `finish`, the last rows are lost.
    TALIEC61850ANALYSIS_EXPORT ~ComtradeRows();

    /// Adds rows.
    /// @param analogs   a column for each analog channel of the record
    /// @param digitals  a column for each digital channel of the record. All columns have the same
    ///                  number of rows, which may be 0
    /// @throws std::invalid_argument  columns are missing, too many, or of different lengths
    /// @throws std::length_error      there would be more rows than the record has. In both cases
    /// no
    ///                                row of the block is added
    TALIEC61850ANALYSIS_EXPORT void add(std::span<ComtradeAnalogColumn const> analogs,
                                        std::span<ComtradeDigitalColumn const> digitals);

    /// Hands over what is left in the buffer.
    /// @throws std::length_error  fewer rows were added than the record has: the data do not fit
    /// the
    ///                            configuration
    TALIEC61850ANALYSIS_EXPORT void finish();

    /// How many rows were added.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::uint64_t rows() const noexcept;

    /// What was lost so far, for each analog channel.
    /// @return valid as long as this object; it changes with each `add`
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::span<ComtradeLosses const> losses()
        const noexcept;

private:
    struct State;

    std::unique_ptr<State> state_;
};

}  // namespace TalIec61850Analysis
