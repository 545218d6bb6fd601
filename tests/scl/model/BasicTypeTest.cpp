#include <gtest/gtest.h>

#include <TalIec61850Scl/model/BasicType.hpp>
#include <string_view>
#include <utility>

namespace TalTest::BasicTypeTest {
namespace {

using namespace TalIec61850Scl;

TEST(BasicTypes, AreKnownByTheirNames) {
    for (auto const& [name, type] : {std::pair{"BOOLEAN", BasicType::boolean},
                                     std::pair{"INT8", BasicType::int8},
                                     std::pair{"INT16", BasicType::int16},
                                     std::pair{"INT24", BasicType::int24},
                                     std::pair{"INT32", BasicType::int32},
                                     std::pair{"INT64", BasicType::int64},
                                     std::pair{"INT128", BasicType::int128},
                                     std::pair{"INT8U", BasicType::int8u},
                                     std::pair{"INT16U", BasicType::int16u},
                                     std::pair{"INT24U", BasicType::int24u},
                                     std::pair{"INT32U", BasicType::int32u},
                                     std::pair{"FLOAT32", BasicType::float32},
                                     std::pair{"FLOAT64", BasicType::float64},
                                     std::pair{"Enum", BasicType::enumerated},
                                     std::pair{"Dbpos", BasicType::dbpos},
                                     std::pair{"Tcmd", BasicType::tcmd},
                                     std::pair{"Check", BasicType::check},
                                     std::pair{"Quality", BasicType::quality},
                                     std::pair{"Timestamp", BasicType::timestamp},
                                     std::pair{"EntryTime", BasicType::entryTime},
                                     std::pair{"VisString32", BasicType::visibleString},
                                     std::pair{"VisString64", BasicType::visibleString},
                                     std::pair{"VisString65", BasicType::visibleString},
                                     std::pair{"VisString129", BasicType::visibleString},
                                     std::pair{"VisString255", BasicType::visibleString},
                                     std::pair{"ObjRef", BasicType::objectReference},
                                     std::pair{"Currency", BasicType::currency},
                                     std::pair{"Unicode255", BasicType::unicodeString},
                                     std::pair{"Octet6", BasicType::octetString},
                                     std::pair{"Octet16", BasicType::octetString},
                                     std::pair{"Octet64", BasicType::octetString},
                                     std::pair{"EntryID", BasicType::octetString},
                                     std::pair{"OptFlds", BasicType::bitString},
                                     std::pair{"SvOptFlds", BasicType::bitString},
                                     std::pair{"LogOptFlds", BasicType::bitString},
                                     std::pair{"TrgOps", BasicType::bitString},
                                     std::pair{"Struct", BasicType::structure}}) {
        EXPECT_EQ(basicTypeOf(name), type) << name;
    }
}

TEST(BasicTypes, OfOtherNamesAreUnknown) {
    for (std::string_view const name : {"", "boolean", "INT", "INT33", "Zzz", "Struct "}) {
        EXPECT_EQ(basicTypeOf(name), BasicType::unknown) << name;
    }
}

}  // namespace
}  // namespace TalTest::BasicTypeTest
