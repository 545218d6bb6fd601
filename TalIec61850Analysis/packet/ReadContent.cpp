#include <TalIec61850Analysis/packet/ReadContent.hpp>
#include <TalIec61850Analysis/packet/Reading.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>
#include <bit>

namespace TalIec61850Analysis {

namespace {

using TalIec61850Parser::wire::readBigEndian;

void setOctets(Octets octets, FaultKind fault, DataView& view) {
    view.value = octets;
    view.fault = fault;
}

/// Sets what was read of the octets, or else they with a fault.
template <typename Value>
void setOrElse(std::optional<Value> const& value, Octets octets, DataView& view) {
    if (value) {
        view.value = *value;
    } else {
        setOctets(octets, octets.empty() ? FaultKind::wrongLength : FaultKind::wrongContent, view);
    }
}

template <typename... Values>
void set(Reading<std::variant<Values...>> const& reading, DataView& view) {
    std::visit([&](auto const& value) { view.value = value; }, reading.value);
    view.fault = reading.fault;
}

/// The first octet tells how wide the exponent is, and so the format.
void readFloat(Octets octets, DataView& view) {
    constexpr std::uint8_t kSingleExponent = 8;
    constexpr std::uint8_t kDoubleExponent = 11;
    if (octets.size() != 1 + sizeof(float) && octets.size() != 1 + sizeof(double)) {
        return setOctets(octets, FaultKind::wrongLength, view);
    }
    bool const isSingle = octets.size() == 1 + sizeof(float);
    if (octets.front() != (isSingle ? kSingleExponent : kDoubleExponent)) {
        return setOctets(octets, FaultKind::wrongContent, view);
    }
    Octets const number = octets.subspan(1);
    if (isSingle) {
        view.value = std::bit_cast<float>(readBigEndian<std::uint32_t>(number));
    } else {
        view.value = std::bit_cast<double>(readBigEndian<std::uint64_t>(number));
    }
}

void readTimeOfDay(Octets octets, DataView& view) {
    auto const time = readBinaryTime(octets);
    if (!time) {
        return setOctets(octets, FaultKind::wrongLength, view);
    }
    view.value = *time;
    if (!time->isTimeOfDay()) {
        view.fault = FaultKind::wrongContent;
    }
}

}  // namespace

void readContent(Octets octets, DataView& view) noexcept {
    switch (view.kind) {
        case DataKind::boolean:
            return set(readBoolean(octets), view);
        case DataKind::bitString:
        case DataKind::booleanArray:
            return setOrElse(readBitString(octets), octets, view);
        case DataKind::integer:
            return set(readSigned(octets), view);
        case DataKind::unsignedNumber:
        case DataKind::bcd:
            return set(readPositive(octets), view);
        case DataKind::floatingPoint:
            return readFloat(octets, view);
        case DataKind::visibleString:
        case DataKind::mmsString:
            view.value = readText(octets).value;
            return;
        case DataKind::binaryTime:
            return readTimeOfDay(octets, view);
        case DataKind::objectId:
            return setOrElse(readObjectId(octets), octets, view);
        case DataKind::utcTime:
            return set(readTime(octets), view);
        default:
            view.value = octets;
    }
}

}  // namespace TalIec61850Analysis
