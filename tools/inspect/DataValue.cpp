#include "tools/inspect/DataValue.hpp"

#include <algorithm>
#include <array>

namespace TalIec61850Tools {

namespace {

struct KnownKind {
    DataKind kind;
    std::uint8_t tag;
    std::string_view name;
};

constexpr std::array<KnownKind, 15> kKnownKinds = {{
    {DataKind::array, 0xA1, "array"},
    {DataKind::structure, 0xA2, "structure"},
    {DataKind::boolean, 0x83, "boolean"},
    {DataKind::bitString, 0x84, "bit-string"},
    {DataKind::integer, 0x85, "integer"},
    {DataKind::unsignedNumber, 0x86, "unsigned"},
    {DataKind::floatingPoint, 0x87, "floating-point"},
    {DataKind::octetString, 0x89, "octet-string"},
    {DataKind::visibleString, 0x8A, "visible-string"},
    {DataKind::binaryTime, 0x8C, "binary-time"},
    {DataKind::bcd, 0x8D, "bcd"},
    {DataKind::booleanArray, 0x8E, "booleanArray"},
    {DataKind::objectId, 0x8F, "objId"},
    {DataKind::mmsString, 0x90, "mMSString"},
    {DataKind::utcTime, 0x91, "utc-time"},
}};

}  // namespace

DataKind kindOf(std::uint8_t tag) {
    auto const* const known = std::find_if(kKnownKinds.begin(), kKnownKinds.end(),
                                           [&](auto const& k) { return k.tag == tag; });
    return known == kKnownKinds.end() ? DataKind::unknown : known->kind;
}

std::string_view toText(DataKind kind) {
    auto const* const known = std::find_if(kKnownKinds.begin(), kKnownKinds.end(),
                                           [&](auto const& k) { return k.kind == kind; });
    if (known != kKnownKinds.end()) {
        return known->name;
    }
    return kind == DataKind::unknown ? "unknown" : "unreadable";
}

}  // namespace TalIec61850Tools
