// One look at an element takes no more than some octets of it, however many there are.

#include <gtest/gtest.h>

#include <TalIec61850Scl/read/Element.hpp>
#include <TalIec61850Scl/read/NameHash.hpp>
#include <array>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <string_view>

namespace TalTest::ElementTest {
namespace {

using namespace TalIec61850Scl::detail;

class SclElements : public testing::Test {
protected:
    Element parse(std::string const& text) {
        EXPECT_TRUE(document_.load_string(text.c_str()));
        return Element(document_.document_element());
    }

private:
    pugi::xml_document document_;
};

std::string attributesText(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += " a" + std::to_string(i) + "='x'";
    }
    return text;
}

std::string const kOther = "<x/>";

std::string others(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += kOther;
    }
    return text;
}

TEST_F(SclElements, HaveTheAttributesAmongTheFirstOnesThatTheyHave) {
    EXPECT_EQ(parse("<a" + attributesText(63) + " name='n'/>").attribute("name"), "n");
    EXPECT_FALSE(parse("<a" + attributesText(64) + " name='n'/>").attribute("name"));
    EXPECT_EQ(parse("<a xmlns:t='u'" + attributesText(62) + " t:name='n'/>").attribute("name"),
              "n");
    EXPECT_FALSE(parse("<a xmlns:t='u'" + attributesText(63) + " t:name='n'/>").attribute("name"));
}

TEST_F(SclElements, AreLookedAtUntilAllAttributesAreFound) {
    std::array<std::string_view, 2> constexpr kWanted{"name", "ix"};
    EXPECT_EQ(parse("<a ix='1' name='n'" + attributesText(1000) + "/>").attributes(kWanted).looks(),
              2);
    EXPECT_EQ(parse("<a name='n'" + attributesText(1000) + "/>").attributes(kWanted).looks(), 64);
    EXPECT_LE(parse("<a t:name='n'" + attributesText(1000) + "/>").attributes(kWanted).looks(),
              128);
}

TEST_F(SclElements, HaveNoNamesOfAnyLength) {
    EXPECT_EQ(parse("<" + std::string(100, 'p') + ":IED/>").name(), "IED");
    EXPECT_EQ(parse("<" + std::string(200, 'p') + ":IED/>").name(), "");
    EXPECT_EQ(parse("<" + std::string(1'000'000, 'n') + "/>").name(), "");
    Element const named = parse("<a " + std::string(200, 'p') + ":name='n'/>");
    EXPECT_FALSE(named.attribute("name"));
}

TEST_F(SclElements, HaveTheValueThatComesEarly) {
    EXPECT_EQ(parse("<a>" + others(63) + "<Val> 1 </Val></a>").configuredValue(), "1");
    EXPECT_EQ(parse("<a>" + others(64) + "<Val>1</Val></a>").configuredValue(), "");
    EXPECT_EQ(parse("<a>" + others(63) + "1</a>").content(), "1");
    EXPECT_EQ(parse("<a>" + others(64) + "1</a>").content(), "");
    EXPECT_EQ(parse("<a><![CDATA[1]]></a>").content(), "1");
}

TEST_F(SclElements, HaveTextsBehindFewBlanks) {
    EXPECT_EQ(parse("<a desc='" + std::string(3000, ' ') + "text'/>").textIn("desc"), "text");
    EXPECT_EQ(parse("<a desc='" + std::string(5000, ' ') + "text'/>").textIn("desc"), "");
    EXPECT_EQ(parse("<a desc='" + std::string(5000, 'x') + "'/>").textIn("desc").size(),
              kMostTextOctets);
}

TEST(SclNameHash, IsNotTheOneThatEverybodyKnows) {
    int same = 0;
    for (std::string_view const name : {"", "LD0", "LD0/PTRC1.Op.general"}) {
        same += NameHash()(name) == std::hash<std::string_view>()(name) ? 1 : 0;
    }
    EXPECT_EQ(same, 0);
}

TEST(SclNameHash, DependsOnEveryLetterAndTheLength) {
    std::set<std::size_t> hashes;
    std::size_t names = 0;
    std::string const name = "LD0/PTRC1.Op.general";
    for (std::size_t size = 0; size <= name.size(); ++size) {
        hashes.insert(NameHash()(name.substr(0, size)));
        hashes.insert(NameHash()(name.substr(0, size) + std::string(1, '\0')));
        names += 2;
    }
    for (std::size_t at = 0; at < name.size(); ++at) {
        std::string other = name;
        other[at] = static_cast<char>(other[at] ^ 1);
        hashes.insert(NameHash()(other));
        ++names;
    }
    EXPECT_EQ(hashes.size(), names);
    EXPECT_EQ(NameHash()(name), NameHash()(name));
}

}  // namespace
}  // namespace TalTest::ElementTest
