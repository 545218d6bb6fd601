#include <TalIec61850Analysis/packet/BinaryTime.hpp>
#include <TalIec61850Analysis/packet/BitString.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <TalIec61850Scl/match/BindMembers.hpp>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>
#include <variant>

namespace TalIec61850Scl {

namespace {

using TalIec61850Analysis::BinaryTime;
using TalIec61850Analysis::BitStringView;
using TalIec61850Analysis::DataKind;
using TalIec61850Analysis::DataView;
using TalIec61850Analysis::FaultKind;
using TalIec61850Analysis::Octets;
using TalIec61850Analysis::UtcTime;

/// Whether a value is of a kind, and its octets make one.
template <typename Held>
bool holds(DataView const& value, DataKind kind) {
    return value.kind == kind && std::holds_alternative<Held>(value.value);
}

bool hasBits(DataView const& value, std::size_t count) {
    auto const* const bits = std::get_if<BitStringView>(&value.value);
    return value.kind == DataKind::bitString && bits != nullptr && bits->size() == count;
}

/// The greatest number of so many bits, no more than 64.
constexpr std::uint64_t greatestOf(unsigned bits) { return ~std::uint64_t{0} >> (64U - bits); }

/// Whether an INT of so many bits holds the number, in however many octets it came.
bool fitsSigned(DataView const& value, unsigned bits) {
    auto const* const number = std::get_if<std::int64_t>(&value.value);
    if (value.kind != DataKind::integer || number == nullptr) {
        return false;
    }
    auto const greatest = static_cast<std::int64_t>(greatestOf(bits - 1));
    return *number >= -greatest - 1 && *number <= greatest;
}

/// Likewise of an INT without a sign. Where the sign bit is set all the same, publishers left out
/// the octet of zeros that should be in front.
bool fitsUnsigned(DataView const& value, unsigned bits) {
    if (value.kind != DataKind::unsignedNumber) {
        return false;
    }
    auto const* const large = std::get_if<std::uint64_t>(&value.value);
    auto const* const number = std::get_if<std::int64_t>(&value.value);
    if (number != nullptr && *number < 0) {
        return *number >= -static_cast<std::int64_t>(greatestOf(bits - 1)) - 1;
    }
    return large == nullptr && number != nullptr &&
           static_cast<std::uint64_t>(*number) <= greatestOf(bits);
}

/// Of an INT128, of which no more than 64 bits are read.
bool fitsInt128(DataView const& value) {
    constexpr std::size_t kMostOctets = 16;
    if (value.kind != DataKind::integer) {
        return false;
    }
    auto const* const octets = std::get_if<Octets>(&value.value);
    return octets == nullptr ||
           (value.fault == FaultKind::tooWide && octets->size() <= kMostOctets);
}

bool fitsNumber(BasicType type, DataView const& value) {
    switch (type) {
        case BasicType::int8:
            return fitsSigned(value, 8);
        case BasicType::int16:
            return fitsSigned(value, 16);
        case BasicType::int24:
            return fitsSigned(value, 24);
        case BasicType::int32:
            return fitsSigned(value, 32);
        case BasicType::int64:
        case BasicType::enumerated:
            return fitsSigned(value, 64);
        case BasicType::int128:
            return fitsInt128(value);
        case BasicType::int8u:
            return fitsUnsigned(value, 8);
        case BasicType::int16u:
            return fitsUnsigned(value, 16);
        case BasicType::int24u:
            return fitsUnsigned(value, 24);
        case BasicType::int32u:
            return fitsUnsigned(value, 32);
        case BasicType::float32:
            return holds<float>(value, DataKind::floatingPoint);
        default:
            return holds<double>(value, DataKind::floatingPoint);
    }
}

bool isText(DataView const& value, DataKind kind) {
    return !value.fault && holds<std::string_view>(value, kind);
}

/// How long a text or octets may be, as the number at the end of the type says; not set without
/// one.
std::optional<std::size_t> greatestLength(std::string_view bType) {
    std::size_t const last = bType.find_last_not_of("0123456789");
    std::string_view const digits =
        last == std::string_view::npos ? std::string_view() : bType.substr(last + 1);
    std::size_t length = 0;
    auto const read = std::from_chars(digits.data(), digits.data() + digits.size(), length);
    return read.ec == std::errc() ? std::optional(length) : std::nullopt;
}

bool isTooLong(std::string_view bType, std::size_t length) {
    auto const greatest = greatestLength(bType);
    return greatest && length > *greatest;
}

}  // namespace

bool fits(BasicType type, DataView const& value) noexcept {
    constexpr std::size_t kDoublePointBits = 2;
    constexpr std::size_t kQualityBits = 13;
    switch (type) {
        case BasicType::unknown:
            return true;
        case BasicType::boolean:
            return holds<bool>(value, DataKind::boolean);
        case BasicType::dbpos:
        case BasicType::tcmd:
        case BasicType::check:
            return hasBits(value, kDoublePointBits);
        case BasicType::quality:
            return hasBits(value, kQualityBits);
        case BasicType::bitString:
            return holds<BitStringView>(value, DataKind::bitString);
        case BasicType::timestamp:
            return holds<UtcTime>(value, DataKind::utcTime);
        case BasicType::entryTime:
            return holds<BinaryTime>(value, DataKind::binaryTime);
        case BasicType::visibleString:
        case BasicType::objectReference:
        case BasicType::currency:
            return isText(value, DataKind::visibleString);
        case BasicType::unicodeString:
            return isText(value, DataKind::mmsString) || isText(value, DataKind::visibleString);
        case BasicType::octetString:
            return !value.fault && holds<Octets>(value, DataKind::octetString);
        case BasicType::structure:
            return value.kind == DataKind::structure;
        default:
            return fitsNumber(type, value);
    }
}

bool fits(DataSetMember const& member, DataView const& value) noexcept {
    if (!fits(member.type, value)) {
        return false;
    }
    auto const* const text = std::get_if<std::string_view>(&value.value);
    if (member.type == BasicType::visibleString && text != nullptr) {
        return !isTooLong(member.bType, text->size());
    }
    auto const* const octets = std::get_if<Octets>(&value.value);
    return member.type != BasicType::octetString || octets == nullptr ||
           !isTooLong(member.bType, octets->size());
}

}  // namespace TalIec61850Scl
