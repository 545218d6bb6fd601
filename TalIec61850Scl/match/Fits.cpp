#include <TalIec61850Analysis/packet/BitString.hpp>
#include <TalIec61850Scl/match/BindMembers.hpp>
#include <variant>

namespace TalIec61850Scl {

namespace {

using TalIec61850Analysis::BitStringView;
using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::DataView;

bool hasBits(DataView const& value, std::size_t count) {
    auto const* const bits = std::get_if<BitStringView>(&value.value);
    return value.kind == DataKind::bitString && bits != nullptr && bits->size() == count;
}

}  // namespace

bool fits(BasicType type, DataView const& value) noexcept {
    constexpr std::size_t kDoublePointBits = 2;
    constexpr std::size_t kQualityBits = 13;
    DataKind const kind = value.kind;
    switch (type) {
        case BasicType::unknown:
            return true;
        case BasicType::boolean:
            return kind == DataKind::boolean;
        case BasicType::int8:
        case BasicType::int16:
        case BasicType::int24:
        case BasicType::int32:
        case BasicType::int64:
        case BasicType::int128:
        case BasicType::enumerated:
            return kind == DataKind::integer;
        case BasicType::int8u:
        case BasicType::int16u:
        case BasicType::int24u:
        case BasicType::int32u:
            return kind == DataKind::unsignedNumber;
        case BasicType::float32:
            return kind == DataKind::floatingPoint && std::holds_alternative<float>(value.value);
        case BasicType::float64:
            return kind == DataKind::floatingPoint && std::holds_alternative<double>(value.value);
        case BasicType::dbpos:
        case BasicType::tcmd:
        case BasicType::check:
            return hasBits(value, kDoublePointBits);
        case BasicType::quality:
            return hasBits(value, kQualityBits);
        case BasicType::bitString:
            return kind == DataKind::bitString;
        case BasicType::timestamp:
            return kind == DataKind::utcTime;
        case BasicType::entryTime:
            return kind == DataKind::binaryTime;
        case BasicType::visibleString:
        case BasicType::objectReference:
        case BasicType::currency:
            return kind == DataKind::visibleString;
        case BasicType::unicodeString:
            return kind == DataKind::mmsString || kind == DataKind::visibleString;
        case BasicType::octetString:
            return kind == DataKind::octetString;
        case BasicType::structure:
            return kind == DataKind::structure || kind == DataKind::array;
    }
    return false;
}

}  // namespace TalIec61850Scl
