// The hash by which attributes are found: every member counts, so that no capture has many
// attributes that share one.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/AttributeTable.hpp>
#include <TalIec61850Analysis/traffic/JoinedHash.hpp>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "support/Bytes.hpp"

namespace TalIec61850Analysis::AttributeHashTest {
namespace {

using detail::AttributeTable;
using detail::hashOf;
using detail::JoinedHash;

/// Each differs from all others, most in one member.
std::vector<StreamAttributes> differentAttributes() {
    std::vector<StreamAttributes> all(1);
    auto const add = [&](auto StreamAttributes::*member, auto const&... values) {
        auto const addOne = [&](auto const& value) {
            StreamAttributes& each = all.emplace_back();
            each.*member = value;
        };
        (addOne(values), ...);
    };
    add(&StreamAttributes::isCut, true);
    add(&StreamAttributes::simulatedBit, true);
    add(&StreamAttributes::asdus, 1U, 2U, 65'536U);
    for (auto const member : {&StreamAttributes::datSet, &StreamAttributes::goID})
        add(member, "", "a", "b", "aaaaaaaa", "aaaaaaaab", "aaaaaaaac", std::string(1, '\0'));
    for (auto const member :
         {&StreamAttributes::confRev, &StreamAttributes::smpRate, &StreamAttributes::smpMod})
        add(member, std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{7}, ~std::uint64_t{0},
            OctetString(), OctetString(9, 0xFF), OctetString(10, 0xFF), OctetString(9, 0xFE));
    for (auto const member : {&StreamAttributes::simulation, &StreamAttributes::ndsCom})
        add(member, false, true, OctetString(), OctetString(2, 0x01), OctetString(2, 0x02),
            OctetString(3, 0x01));
    return all;
}

TEST(AttributeHash, DependsOnEveryMember) {
    auto const all = differentAttributes();
    std::set<std::size_t> hashes;
    for (StreamAttributes const& each : all) hashes.insert(hashOf(each));
    EXPECT_EQ(hashes.size(), all.size());
}

TEST(AttributeTable, HasAttributesThatAreEqualOnce) {
    auto const all = differentAttributes();
    AttributeTable table;
    for (int round = 0; round < 2; ++round)
        for (std::uint32_t i = 0; i < all.size(); ++i) EXPECT_EQ(table.numberOf(all[i]), i);
    EXPECT_EQ(table.take(), all);
}

std::size_t hashOfTexts(std::string const& first, std::string const& second) {
    JoinedHash hash;
    hash.add(first);
    hash.add(second);
    return hash.result();
}

TEST(JoinedHash, TellsWhereOneTextEnds) {
    EXPECT_EQ(hashOfTexts("abc", "d"), hashOfTexts("abc", "d"));
    EXPECT_NE(hashOfTexts("abc", "d"), hashOfTexts("ab", "cd"));
    EXPECT_NE(hashOfTexts("abc", ""), hashOfTexts("", "abc"));
}

TEST(JoinedHash, DependsOnTheOrderAndOnEveryBit) {
    std::set<std::size_t> hashes;
    std::size_t count = 0;
    for (unsigned bit = 0; bit < 64; ++bit) {
        for (bool const isFirst : {true, false}) {
            JoinedHash hash;
            hash.add(isFirst ? std::uint64_t{1} << bit : 0U);
            hash.add(isFirst ? 0U : std::uint64_t{1} << bit);
            hashes.insert(hash.result());
            ++count;
        }
    }
    EXPECT_EQ(hashes.size(), count);
}

}  // namespace
}  // namespace TalIec61850Analysis::AttributeHashTest
