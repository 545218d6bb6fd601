#include <TalIec61850Analysis/packet/ReadContent.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>
#include <bit>

namespace TalIec61850Analysis {

namespace {

using Content = DataView::Content;
using TalIec61850Parser::wire::readBigEndian;

/// What was read of the octets, or else they with a fault.
template <typename Value>
Reading<Content> orElse(std::optional<Value> const& value, Octets octets) {
    if (value) {
        return {*value};
    }
    return {octets, octets.empty() ? FaultKind::wrongLength : FaultKind::wrongContent};
}

template <typename... Values>
Reading<Content> toContent(Reading<std::variant<Values...>> const& reading) {
    return {std::visit([](auto const& value) { return Content(value); }, reading.value),
            reading.fault};
}

/// The first octet tells how wide the exponent is, and so the format.
Reading<Content> readFloat(Octets octets) {
    constexpr std::uint8_t kSingleExponent = 8;
    constexpr std::uint8_t kDoubleExponent = 11;
    if (octets.size() != 1 + sizeof(float) && octets.size() != 1 + sizeof(double)) {
        return {octets, FaultKind::wrongLength};
    }
    bool const isSingle = octets.size() == 1 + sizeof(float);
    if (octets.front() != (isSingle ? kSingleExponent : kDoubleExponent)) {
        return {octets, FaultKind::wrongContent};
    }
    Octets const number = octets.subspan(1);
    if (isSingle) {
        return {std::bit_cast<float>(readBigEndian<std::uint32_t>(number))};
    }
    return {std::bit_cast<double>(readBigEndian<std::uint64_t>(number))};
}

Reading<Content> readTimeOfDay(Octets octets) {
    auto const time = readBinaryTime(octets);
    if (!time) {
        return {octets, FaultKind::wrongLength};
    }
    if (!time->isTimeOfDay()) {
        return {*time, FaultKind::wrongContent};
    }
    return {*time};
}

}  // namespace

Reading<DataView::Content> readContent(DataKind kind, Octets octets) noexcept {
    switch (kind) {
        case DataKind::boolean:
            return toContent(readBoolean(octets));
        case DataKind::bitString:
        case DataKind::booleanArray:
            return orElse(readBitString(octets), octets);
        case DataKind::integer:
            return toContent(readSigned(octets));
        case DataKind::unsignedNumber:
        case DataKind::bcd:
            return toContent(readCounter(octets));
        case DataKind::floatingPoint:
            return readFloat(octets);
        case DataKind::visibleString:
        case DataKind::mmsString:
            return {readText(octets).value};
        case DataKind::binaryTime:
            return readTimeOfDay(octets);
        case DataKind::objectId:
            return orElse(readObjectId(octets), octets);
        case DataKind::utcTime:
            return toContent(readTime(octets));
        default:
            return {octets};
    }
}

}  // namespace TalIec61850Analysis
