#include "tools/render/Cells.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <variant>

#include "tools/render/AddressText.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::Octets;
using TalIec61850Analysis::Readable;
using TalIec61850Analysis::ReadableView;

std::string_view toText(Protocol protocol) { return protocol == Protocol::goose ? "GOOSE" : "SV"; }

Cell addressCell(std::optional<MacAddress> const& address) {
    return address ? Cell(ShortText(toText(*address))) : Cell();
}

Cell appIdCell(std::optional<std::uint16_t> appId) {
    return appId ? Cell(ShortText(appIdText(*appId))) : Cell();
}

Cell timeCell(std::optional<CaptureTime> const& time) {
    return time ? Cell(toUtcCell(*time)) : Cell();
}

Cell timeNsCell(std::optional<CaptureTime> const& time) {
    return time ? Cell(nanosecondsSince1970(*time)) : Cell();
}

Cell numberCell(ReadableView<std::uint64_t> const& number) {
    if (auto const* const octets = std::get_if<Octets>(&number)) {
        return fmt::format("{:02x}", fmt::join(*octets, ""));
    }
    return std::get<std::uint64_t>(number);
}

Cell numberCell(Readable<std::uint64_t> const& number) {
    auto const* const octets = std::get_if<TalIec61850Analysis::OctetString>(&number);
    return numberCell(octets != nullptr
                          ? ReadableView<std::uint64_t>(Octets(*octets))
                          : ReadableView<std::uint64_t>(std::get<std::uint64_t>(number)));
}

}  // namespace TalIec61850Tools
