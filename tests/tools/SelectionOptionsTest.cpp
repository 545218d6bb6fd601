// How the values of the options on streams and on time are read.

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/library/LibraryOptions.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/options/WindowOptions.hpp"

namespace TalIec61850Tools::SelectionOptionsTest {
namespace {

using Arguments = std::vector<std::string>;

/// What a command line asks for.
struct Asked {
    LibraryCriteria criteria;
    PacketCriteria packets;
    WindowOptions window;
};

/// @throws CLI::ParseError
Asked ask(Arguments arguments) {
    Asked asked;
    CLI::App app;
    CommandDefinition command{
        .parser = &app, .notes = {}, .examples = {}, .readsCaptures = false, .choices = {}};
    addLibraryOptions(command, asked.criteria);
    addCounterOptions(command, asked.packets);
    addWindowOptions(command, asked.window);
    std::reverse(arguments.begin(), arguments.end());
    app.parse(std::move(arguments));
    return asked;
}

void expectRefused(std::string const& option, Arguments const& values) {
    for (auto const& value : values) {
        EXPECT_THROW(ask({option, value}), CLI::ParseError) << option << " " << value;
    }
}

TEST(NumberOption, RefusesWhatIsNoNumber) {
    for (std::string const option : {"--vlan", "--reserved1-bit0", "--confrev"}) {
        expectRefused(option, {"", "x", "0x", "1.5", "1e3", " 1", "1 ", "-1", "+1", "0xG", "0x-1",
                               "99999999999999999999", "18446744073709551616",
                               "0x10000000000000000", "\xd9\xa3", "0b1", "1,2"});
    }
}

TEST(NumberOption, TakesEveryValueThatTheFieldHolds) {
    expectRefused("--vlan", {"4096", "0x1000", "65536"});
    expectRefused("--appid", {"65536", "0x10000"});
    expectRefused("--reserved1-bit0", {"2", "256"});
    expectRefused("--confrev", {"18446744073709551616"});
    EXPECT_EQ(ask({"--vlan", "4095"}).criteria.vlanIds, std::vector<std::uint16_t>{4095});
    EXPECT_EQ(ask({"--appid", "0xffff"}).criteria.appIds, std::vector<std::uint16_t>{0xFFFF});
    EXPECT_EQ(ask({"--confrev", "18446744073709551615"}).criteria.confRevs,
              std::vector<std::uint64_t>{18446744073709551615U});
    EXPECT_EQ(ask({"--vlan", "007"}).criteria.vlanIds, std::vector<std::uint16_t>{7});
    EXPECT_EQ(ask({"--reserved1-bit0", "0", "--reserved1-bit0", "1"}).criteria.reserved1Bit0,
              (std::vector<std::uint8_t>{0, 1}));
}

TEST(AppIdOption, IsHexadecimalWithAndWithoutItsSign) {
    EXPECT_EQ(ask({"--appid", "4001", "--appid=0x4001", "--appid", "0X1f"}).criteria.appIds,
              (std::vector<std::uint16_t>{0x4001, 0x4001, 0x1F}));
    EXPECT_EQ(ask({"--appid", "0"}).criteria.appIds, std::vector<std::uint16_t>{0});
    expectRefused("--appid", {"", "x", "0x", "1.5", " 1", "1 ", "-1", "+1", "0xG", "0x-1", "0x0x1",
                              "10000", "99999999999999999999", "1,2"});
}

TEST(AddressOption, RefusesWhatIsNoAddress) {
    for (std::string const option : {"--source", "--destination"}) {
        expectRefused(option, {"", "01:0c:cd:01:00", "01:0c:cd:01:00:01:02", "010ccd010001",
                               "01.0c.cd.01.00.01", "1:c:cd:1:0:1", "01:0c:cd:01:00:0g",
                               "01:0c:cd:01:00:01 ", " 1:0c:cd:01:00:01",
                               ":::::::::::::::::", "-----------------", "0x:0c:cd:01:00:01", "*"});
    }
}

TEST(AddressOption, IsReadInEveryUsualWriting) {
    for (auto const* text : {"01:0c:cd:01:00:AB", "01-0C-CD-01-00-ab", "01:0c-cd:01-00:aB"}) {
        EXPECT_EQ(ask({"--source", text}).criteria.sources,
                  (std::vector<MacAddress>{{0x01, 0x0C, 0xCD, 0x01, 0x00, 0xAB}}));
    }
}

TEST(LaneOption, IsAOrB) {
    expectRefused("--hsr", {"", "C", "AB", "0", "a "});
    expectRefused("--prp", {"", "C", "BA", "1", "\xc3\x84"});
    EXPECT_EQ(ask({"--hsr", "a", "--hsr=B"}).criteria.hsrLanes, (std::vector<char>{'A', 'B'}));
    EXPECT_EQ(ask({"--prp", "b"}).criteria.prpLanes, std::vector<char>{'B'});
}

TEST(TimeOption, RefusesWhatIsNoTime) {
    for (std::string const option : {"--from", "--to"}) {
        expectRefused(option, {"", "yesterday", "-1d", "1.1234567890", "2024-02-30", "+1d",
                               "2024-03-20T10", "10:0", "99999999999"});
    }
    EXPECT_EQ(ask({"--from", "5"}).window.from, parseTimeBound("5"));
    EXPECT_EQ(ask({"--to=+5ms"}).window.to, parseTimeBound("+5ms"));
    EXPECT_EQ(ask({"--from", "-5s", "--to", "-1"}).window.from, parseTimeBound("-5s"));
    EXPECT_EQ(ask({"--to=-5s"}).window.to, parseTimeBound("-5s"));
    EXPECT_FALSE(ask({}).window.from);
}

TEST(CounterOption, IsANumberOrARange) {
    EXPECT_EQ(ask({"--stnum", "7", "--stnum=7-9"}).packets.stNums,
              (std::vector<NumberRange>{{7, 7}, {7, 9}}));
    EXPECT_EQ(ask({"--sqnum", "0-4294967295"}).packets.sqNums,
              (std::vector<NumberRange>{{0, 4294967295}}));
    EXPECT_EQ(ask({"--smpcnt", "0x10-0x10"}).packets.smpCnts, (std::vector<NumberRange>{{16, 16}}));
    expectRefused("--smpcnt",
                  {"", "x", "-", "1-", "-1", "9-7", "1-2-3", "4294967296", "0-99999999999"});
}

TEST(NameOption, TakesOneValueEachTime) {
    EXPECT_EQ(ask({"--svid", "a,b", "--svid", "", "--svid=c d"}).criteria.svIDs,
              (std::vector<std::string>{"a,b", "", "c d"}));
    EXPECT_THROW(ask({"--svid", "a", "b"}), CLI::ParseError);
    EXPECT_THROW(ask({"--svid"}), CLI::ParseError);
}

TEST(WindowOptions, ResolveAgainstTheCaptures) {
    auto const window = ask({"--from", "+1s", "--to", "-2s"}).window;
    CaptureSpan const span{.begin = CaptureTime(std::chrono::seconds(4)),
                           .end = CaptureTime(std::chrono::seconds(12))};
    EXPECT_EQ(window.resolve(span).from, CaptureTime(std::chrono::seconds(5)));
    EXPECT_EQ(window.resolve(span).to, CaptureTime(std::chrono::seconds(10)));
    EXPECT_FALSE(ask({}).window.resolve(span).from);
    EXPECT_NO_THROW(window.check());
}

TEST(WindowOptions, TakeAMiddleAndALengthInPlaceOfEnds) {
    CaptureSpan const span{.begin = CaptureTime(std::chrono::seconds(4)),
                           .end = CaptureTime(std::chrono::seconds(12))};
    auto const window = ask({"--around", "+3s", "--span", "500ms"}).window;
    EXPECT_EQ(window.resolve(span).from, CaptureTime(std::chrono::milliseconds(6750)));
    EXPECT_EQ(window.resolve(span).to, CaptureTime(std::chrono::milliseconds(7250)));
    auto const second = ask({"--around", "+3s"}).window;
    EXPECT_EQ(second.resolve(span).from, CaptureTime(std::chrono::milliseconds(6500)));
    EXPECT_EQ(second.resolve(span).to, CaptureTime(std::chrono::milliseconds(7500)));
    expectRefused("--span", {"", "x", "+1s", "-1s", "1d", "10:00"});
    EXPECT_THROW(ask({"--around", "+3s", "--from", "+1s"}).window.check(), UsageError);
    EXPECT_THROW(ask({"--around", "+3s", "--to", "+1s"}).window.check(), UsageError);
    EXPECT_THROW(ask({"--span", "1s"}).window.check(), UsageError);
    EXPECT_NO_THROW(window.check());
}

TEST(WindowOptions, RefuseAWindowThatSurelyEndsBeforeItBegins) {
    for (auto const& [from, to] : {std::pair{"+2s", "+1s"},
                                   {"-1s", "-2s"},
                                   {"10:01", "10:00"},
                                   {"11:00+01:00", "10:59+01:00"},
                                   {"2", "1"}}) {
        EXPECT_THROW(ask({"--from", from, "--to", to}).window.check(), UsageError) << from;
        EXPECT_NO_THROW(ask({"--from", to, "--to", from}).window.check()) << from;
    }
    EXPECT_NO_THROW(ask({"--from", "+2s", "--to", "-1s"}).window.check());
    EXPECT_NO_THROW(ask({"--from", "10:00", "--to", "10:30+01:00"}).window.check());
}

}  // namespace
}  // namespace TalIec61850Tools::SelectionOptionsTest
