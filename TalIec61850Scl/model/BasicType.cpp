#include <TalIec61850Scl/model/BasicType.hpp>
#include <algorithm>
#include <array>

namespace TalIec61850Scl {

namespace {

struct BasicTypeName {
    std::string_view name;
    BasicType type;
};

/// In the order of their names.
constexpr std::array kBasicTypeNames{
    BasicTypeName{"BOOLEAN", BasicType::boolean},
    BasicTypeName{"Check", BasicType::check},
    BasicTypeName{"Currency", BasicType::currency},
    BasicTypeName{"Dbpos", BasicType::dbpos},
    BasicTypeName{"EntryID", BasicType::octetString},
    BasicTypeName{"EntryTime", BasicType::entryTime},
    BasicTypeName{"Enum", BasicType::enumerated},
    BasicTypeName{"FLOAT32", BasicType::float32},
    BasicTypeName{"FLOAT64", BasicType::float64},
    BasicTypeName{"INT128", BasicType::int128},
    BasicTypeName{"INT16", BasicType::int16},
    BasicTypeName{"INT16U", BasicType::int16u},
    BasicTypeName{"INT24", BasicType::int24},
    BasicTypeName{"INT24U", BasicType::int24u},
    BasicTypeName{"INT32", BasicType::int32},
    BasicTypeName{"INT32U", BasicType::int32u},
    BasicTypeName{"INT64", BasicType::int64},
    BasicTypeName{"INT8", BasicType::int8},
    BasicTypeName{"INT8U", BasicType::int8u},
    BasicTypeName{"LogOptFlds", BasicType::bitString},
    BasicTypeName{"ObjRef", BasicType::objectReference},
    BasicTypeName{"Octet16", BasicType::octetString},
    BasicTypeName{"Octet6", BasicType::octetString},
    BasicTypeName{"Octet64", BasicType::octetString},
    BasicTypeName{"OptFlds", BasicType::bitString},
    BasicTypeName{"Quality", BasicType::quality},
    BasicTypeName{"Struct", BasicType::structure},
    BasicTypeName{"SvOptFlds", BasicType::bitString},
    BasicTypeName{"Tcmd", BasicType::tcmd},
    BasicTypeName{"Timestamp", BasicType::timestamp},
    BasicTypeName{"TrgOps", BasicType::bitString},
    BasicTypeName{"Unicode255", BasicType::unicodeString},
    BasicTypeName{"VisString129", BasicType::visibleString},
    BasicTypeName{"VisString255", BasicType::visibleString},
    BasicTypeName{"VisString32", BasicType::visibleString},
    BasicTypeName{"VisString64", BasicType::visibleString},
    BasicTypeName{"VisString65", BasicType::visibleString},
};

}  // namespace

BasicType basicTypeOf(std::string_view bType) noexcept {
    auto const found = std::lower_bound(
        kBasicTypeNames.begin(), kBasicTypeNames.end(), bType,
        [](BasicTypeName const& each, std::string_view wanted) { return each.name < wanted; });
    return found != kBasicTypeNames.end() && found->name == bType ? found->type
                                                                  : BasicType::unknown;
}

}  // namespace TalIec61850Scl
