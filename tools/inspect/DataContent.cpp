#include "tools/inspect/DataContent.hpp"

#include <bit>
#include <limits>

#include "tools/inspect/Integer.hpp"

namespace TalIec61850Tools {

namespace {

using Content = DataValue::Content;

/// What was read of the octets, or else they with a fault.
template <typename Value>
Reading<Content> orElse(std::optional<Value>&& value, OctetString&& octets, FaultKind fault) {
    if (value) {
        return {Content(std::move(*value))};
    }
    return {Content(std::move(octets)), fault};
}

template <typename... Values>
Reading<Content> toContent(Reading<std::variant<Values...>>&& reading) {
    return {std::visit([](auto&& value) { return Content(std::forward<decltype(value)>(value)); },
                       std::move(reading.value)),
            reading.fault};
}

Reading<Content> readSigned(OctetString&& octets) {
    Integer integer = readInteger(octets);
    auto const fault = faultOf(integer);
    return toContent(Reading<Integer>{std::move(integer), fault});
}

/// The first octet tells how wide the exponent is, and so the format.
Reading<Content> readFloat(OctetString&& octets) {
    constexpr std::uint8_t kSingleExponent = 8;
    constexpr std::uint8_t kDoubleExponent = 11;
    if (octets.size() != 1 + sizeof(float) && octets.size() != 1 + sizeof(double)) {
        return {std::move(octets), FaultKind::wrongLength};
    }
    bool const isSingle = octets.size() == 1 + sizeof(float);
    if (octets.front() != (isSingle ? kSingleExponent : kDoubleExponent)) {
        return {std::move(octets), FaultKind::wrongContent};
    }
    std::uint64_t bits = 0;
    for (std::size_t i = 1; i < octets.size(); ++i) {
        bits = bits << 8U | octets[i];
    }
    if (isSingle) {
        return {std::bit_cast<float>(static_cast<std::uint32_t>(bits))};
    }
    return {std::bit_cast<double>(bits)};
}

/// The first number holds two: the first of them is 0 to 2.
void addFirstArcs(std::uint64_t number, ObjectId& id) {
    std::uint64_t const first = number < 80 ? number / 40 : 2;
    id.arcs = {first, number - 40 * first};
}

/// Nothing where a number does not end, begins with zero bits alone, or takes more than 64 bits.
std::optional<ObjectId> readObjectId(OctetString const& octets) {
    constexpr std::uint8_t kMore = 0x80;
    constexpr std::uint64_t kMaxBeforeShift = std::numeric_limits<std::uint64_t>::max() >> 7U;
    ObjectId id;
    std::uint64_t number = 0;
    bool isInside = false;
    for (std::uint8_t const octet : octets) {
        if ((!isInside && octet == kMore) || number > kMaxBeforeShift) {
            return std::nullopt;
        }
        number = number << 7U | (octet & 0x7FU);
        isInside = (octet & kMore) != 0;
        if (!isInside) {
            if (id.arcs.empty()) {
                addFirstArcs(number, id);
            } else {
                id.arcs.push_back(number);
            }
            number = 0;
        }
    }
    return isInside || id.arcs.empty() ? std::nullopt : std::optional(std::move(id));
}

Reading<Content> readBits(OctetString&& octets) {
    auto const fault = octets.empty() ? FaultKind::wrongLength : FaultKind::wrongContent;
    auto bits = readBitString(octets);
    return orElse(std::move(bits), std::move(octets), fault);
}

Reading<Content> readTimeOfDay(OctetString&& octets) {
    auto time = readBinaryTime(octets);
    bool const isLate = time && !time->isTimeOfDay();
    auto reading = orElse(std::optional(time), std::move(octets), FaultKind::wrongLength);
    if (isLate) {
        reading.fault = FaultKind::wrongContent;
    }
    return reading;
}

Reading<Content> readIdentifier(OctetString&& octets) {
    auto const fault = octets.empty() ? FaultKind::wrongLength : FaultKind::wrongContent;
    auto id = readObjectId(octets);
    return orElse(std::move(id), std::move(octets), fault);
}

}  // namespace

Reading<DataValue::Content> readContent(DataKind kind, OctetString&& octets) {
    switch (kind) {
        case DataKind::boolean:
            return toContent(readBoolean(std::move(octets)));
        case DataKind::bitString:
        case DataKind::booleanArray:
            return readBits(std::move(octets));
        case DataKind::integer:
            return readSigned(std::move(octets));
        case DataKind::unsignedNumber:
        case DataKind::bcd:
            return toContent(readCounter(std::move(octets)));
        case DataKind::floatingPoint:
            return readFloat(std::move(octets));
        case DataKind::visibleString:
        case DataKind::mmsString:
            return {std::string(octets.begin(), octets.end())};
        case DataKind::binaryTime:
            return readTimeOfDay(std::move(octets));
        case DataKind::objectId:
            return readIdentifier(std::move(octets));
        case DataKind::utcTime:
            return toContent(readTime(std::move(octets)));
        default:
            return {std::move(octets)};
    }
}

}  // namespace TalIec61850Tools
