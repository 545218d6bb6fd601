#include "analysis/comtrade/EncodedComtrade.hpp"

#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <algorithm>
#include <chrono>
#include <span>
#include <string>
#include <variant>

namespace TalTest {

using namespace TalIec61850Analysis;

std::vector<ComtradeFormat> everyFormat() {
    return {{ComtradeEdition::of1999, ComtradeData::ascii},
            {ComtradeEdition::of1999, ComtradeData::binary},
            {ComtradeEdition::of2013, ComtradeData::ascii},
            {ComtradeEdition::of2013, ComtradeData::binary},
            {ComtradeEdition::of2013, ComtradeData::binary32}};
}

ComtradeRecord recordOf(ComtradeFormat format, std::size_t analogs, std::size_t digitals,
                        std::uint64_t rows) {
    ComtradeRecord record;
    record.format = format;
    record.station = "Station";
    record.device = "Device";
    record.rows = rows;
    record.start = CaptureTime(std::chrono::seconds(1'710'928'800));
    record.trigger = record.start;
    for (std::size_t i = 1; i <= analogs; ++i) {
        ComtradeAnalog analog;
        analog.id = "a" + std::to_string(i);
        record.analogs.push_back(analog);
    }
    for (std::size_t i = 1; i <= digitals; ++i) {
        ComtradeDigital digital;
        digital.id = "d" + std::to_string(i);
        record.digitals.push_back(digital);
    }
    return record;
}

ComtradeColumns ComtradeColumns::part(std::size_t first, std::size_t count) const {
    ComtradeColumns result;
    for (ComtradeAnalogColumn const& column : analogs) {
        result.analogs.push_back(
            {.samples = std::visit([&](auto const& samples)
                                       -> ComtradeSamples { return samples.subspan(first, count); },
                                   column.samples),
             .missing =
                 column.missing.empty() ? column.missing : column.missing.subspan(first, count)});
    }
    for (ComtradeDigitalColumn const& column : digitals) {
        result.digitals.push_back(column.subspan(first, count));
    }
    return result;
}

EncodedComtrade encoded(ComtradeRecord const& record, ComtradeColumns const& columns,
                        std::size_t rowsOfBlock) {
    EncodedComtrade result;
    ComtradeRows rows(record, [&](std::span<std::uint8_t const> piece) {
        result.octets.insert(result.octets.end(), piece.begin(), piece.end());
        ++result.pieces;
    });
    for (std::size_t first = 0; first < record.rows; first += rowsOfBlock) {
        ComtradeColumns const block =
            columns.part(first, std::min<std::size_t>(rowsOfBlock, record.rows - first));
        rows.add(block.analogs, block.digitals);
    }
    rows.finish();
    result.losses.assign(rows.losses().begin(), rows.losses().end());
    return result;
}

ReadComtrade readBack(ComtradeRecord const& record, ComtradeColumns const& columns) {
    return ComtradeReader::read(comtradeConfiguration(record), encoded(record, columns).octets);
}

}  // namespace TalTest
