#pragma once

#include <TalIec61850Analysis/comtrade/ComtradeRows.hpp>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/Bytes.hpp"
#include "support/ComtradeReader.hpp"

namespace TalTest {

/// All formats that there are.
[[nodiscard]] std::vector<TalIec61850Analysis::ComtradeFormat> everyFormat();

/// A record of this many channels, named by their numbers.
[[nodiscard]] TalIec61850Analysis::ComtradeRecord recordOf(
    TalIec61850Analysis::ComtradeFormat format, std::size_t analogs, std::size_t digitals,
    std::uint64_t rows);

/// Columns of a record, whole.
struct ComtradeColumns {
    std::vector<TalIec61850Analysis::ComtradeAnalogColumn> analogs;
    std::vector<TalIec61850Analysis::ComtradeDigitalColumn> digitals;

    /// The same rows of every column.
    [[nodiscard]] ComtradeColumns part(std::size_t first, std::size_t count) const;
};

/// What a record's data are.
struct EncodedComtrade {
    Bytes octets;
    std::vector<TalIec61850Analysis::ComtradeLosses> losses;
    /// In how many pieces the octets came.
    std::size_t pieces = 0;
};

/// The data of a record, encoded in blocks.
/// @param rowsOfBlock  the last block may have fewer
[[nodiscard]] EncodedComtrade encoded(TalIec61850Analysis::ComtradeRecord const& record,
                                      ComtradeColumns const& columns,
                                      std::size_t rowsOfBlock = 1000);

/// Written, and read back.
[[nodiscard]] ReadComtrade readBack(TalIec61850Analysis::ComtradeRecord const& record,
                                    ComtradeColumns const& columns);

}  // namespace TalTest
