#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeFile.hpp>
#include <TalIec61850Analysis/comtrade/RequireWritable.hpp>
#include <TalIec61850Analysis/comtrade/RowShape.hpp>
#include <algorithm>
#include <cstddef>
#include <stdexcept>

namespace TalIec61850Analysis {

namespace {

/// A text in which no line can be taken for a section's header: names come from the network.
std::string sectionText(std::string text) {
    constexpr std::string_view mark = "---";
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at)) {
        std::size_t const end = std::min(text.find_first_not_of('-', at), text.size());
        text.replace(at, end - at, end - at, '_');
    }
    return text;
}

std::string dataHeader(ComtradeRecord const& record) {
    std::string kind(comtradeName(record.format.data));
    if (auto const size = comtradeDataSize(record)) {
        kind += ": " + std::to_string(*size);
    }
    return "--- file type: DAT " + kind + " ---\r\n";
}

}  // namespace

std::optional<std::uint64_t> comtradeDataSize(ComtradeRecord const& record) {
    detail::requireWritable(record);
    if (record.format.data == ComtradeData::ascii) {
        return std::nullopt;
    }
    // Both are limited: the product is below 2^55.
    return record.rows * detail::RowShape(record).size();
}

std::string comtradeText(std::string_view text) {
    std::string lines;
    lines.reserve(text.size() + 2);
    for (std::size_t i = 0; i < text.size(); ++i) {
        char const letter = text[i];
        if (letter == '\r' || letter == '\n') {
            lines += "\r\n";
            i += text.substr(i, 2) == "\r\n" ? 1U : 0U;
        } else {
            auto const octet = static_cast<unsigned char>(letter);
            bool const isControl = (octet < 0x20U && letter != '\t') || octet == 0x7FU;
            lines += isControl ? '_' : letter;
        }
    }
    if (!lines.empty() && lines.back() != '\n') {
        lines += "\r\n";
    }
    return lines;
}

std::string comtradeFileHead(ComtradeRecord const& record, std::string_view information,
                             std::string_view header) {
    if (record.format.edition != ComtradeEdition::of2013) {
        throw std::invalid_argument("ComtradeRecord: this edition has no single file");
    }
    return "--- file type: CFG ---\r\n" + sectionText(comtradeConfiguration(record)) +
           "--- file type: INF ---\r\n" + sectionText(comtradeText(information)) +
           "--- file type: HDR ---\r\n" + sectionText(comtradeText(header)) + dataHeader(record);
}

}  // namespace TalIec61850Analysis
