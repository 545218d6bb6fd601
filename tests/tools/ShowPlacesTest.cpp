// `show FILE@POSITION`: which packets are found, and what is said of the others.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"
#include "tools/MemberTraffic.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/StreamsTraffic.hpp"
#include "tools/options/PacketLocator.hpp"

namespace TalTest::ShowPlacesTest {
namespace {

/// The packets of a file as `packets` writes them: FILE@POSITION.
Arguments placesIn(std::string const& file, Surroundings const& surroundings = {}) {
    Arguments places;
    for (Json const& row : rowsOf({"packets", file}, surroundings)) {
        places.push_back(row["file"].get<std::string>() + "@" + row["position"].dump());
    }
    return places;
}

/// The places that `show` writes of.
Arguments shownPlaces(std::vector<Json> const& rows) {
    Arguments places;
    for (Json const& row : rows) {
        places.push_back(row["file"].get<std::string>() + "@" + row["position"].dump());
    }
    return places;
}

TEST(ShowPlaces, FindsEachPacketThatIsListed) {
    TempFile const file(memberTraffic());
    auto const places = placesIn(file.path());
    ASSERT_EQ(places.size(), 29U);
    for (auto const& place : places) {
        EXPECT_EQ(shownPlaces(rowsOf({"show", place})), Arguments{place});
    }
}

TEST(ShowPlaces, TakesSeveralInTimeOrderAndOneGivenTwiceOnce) {
    TempFile const file(smallCapture());
    auto const places = placesIn(file.path());
    ASSERT_EQ(places.size(), 5U);
    EXPECT_EQ(shownPlaces(rowsOf({"show", places[4], places[0], places[2], places[0]})),
              (Arguments{places[0], places[2], places[4]}));
}

TEST(ShowPlaces, MayLieInSeveralFiles) {
    TempDir const folder;
    auto const first = folder.write("1.pcap", smallCapture());
    auto const second = folder.write("2.pcap", memberTraffic());
    auto const a = placesIn(first)[1];
    auto const b = placesIn(second)[20];
    EXPECT_EQ(shownPlaces(rowsOf({"show", b, a})), (Arguments{a, b}));
}

TEST(ShowPlaces, MayLieInFilesWhoseNamesHoldAnAt) {
    TempDir const folder;
    for (auto const* name : {"a@b.pcap", "@", "a@", "@70", "a@70", "x@1@2"}) {
        auto const file = folder.write(name, smallCapture());
        auto const places = placesIn(file);
        ASSERT_EQ(places.size(), 5U);
        EXPECT_EQ(shownPlaces(rowsOf({"show", places[3]})), Arguments{places[3]}) << name;
        // The name of a file as a whole is that file.
        EXPECT_EQ(shownPlaces(rowsOf({"show", file})), places) << name;
    }
}

TEST(ShowPlaces, MayNameOneFileInSeveralWays) {
    TempDir const folder;
    auto const file = folder.write("1.pcap", smallCapture());
    std::filesystem::create_symlink(file, folder.file("link.pcap"));
    auto const places = placesIn(file);
    auto const by = [&](char const* name, std::size_t number) {
        return folder.file(name) + places[number].substr(places[number].rfind('@'));
    };
    EXPECT_EQ(rowsOf({"show", by("link.pcap", 0)}).size(), 1U);
    EXPECT_EQ(rowsOf({"show", by("link.pcap", 0), by("1.pcap", 1), by("./1.pcap", 2)}).size(), 3U);
}

TEST(ShowPlaces, OfStandardInputAreThoseThatAreListed) {
    Surroundings const piped{.inputPiped = smallCapture()};
    auto const places = placesIn("-", piped);
    ASSERT_EQ(places.size(), 5U);
    EXPECT_TRUE(places[1].starts_with("-@")) << places[1];
    EXPECT_EQ(shownPlaces(rowsOf({"show", places[1]}, piped)), Arguments{places[1]});
    auto const behind = runCompanion({"show", "-f", "json", "--", places[1]}, piped);
    EXPECT_EQ(shownPlaces(jsonOf(behind.out)), Arguments{places[1]});
}

TEST(ShowPlaces, ThatHoldNoPacketAreNamedAndTheOthersShown) {
    TempFile const file(smallCapture());
    auto const place = placesIn(file.path())[2];
    for (auto const* position : {"0", "23", "1", "99999999", "18446744073709551615"}) {
        auto const result =
            runCompanion({"show", "-f", "json", file.path() + "@" + position, place});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, complaint(file.path() + ": no such packet at " + position +
                                        ", see tal-iec61850 packets"));
        EXPECT_EQ(shownPlaces(jsonOf(result.out)), Arguments{place});
    }
}

TEST(ShowPlaces, MayBeThoseOfTheFrameOrOfTheRecord) {
    TempFile const file(smallCapture());
    for (Json const& row : rowsOf({"packets", file.path()})) {
        auto const shown = rowsOf({"show", file.path() + "@" + row["position"].dump()});
        ASSERT_EQ(shown.size(), 1U);
        EXPECT_EQ(shown[0]["position"], row["position"]);
        for (auto const* field : {"framePosition", "recordPosition"}) {
            EXPECT_EQ(rowsOf({"show", file.path() + "@" + row[field].dump()}), shown) << field;
        }
    }
}

TEST(ShowPlaces, OfTheLastPacketReadItsSamplesAsThoseBefore) {
    WaveformSettings settings = declaredWave();
    settings.members = repeatedMembers({WaveMember::float32, WaveMember::quality}, 8);
    for (bool const isPcapng : {false, true}) {
        settings.isPcapng = isPcapng;
        WaveformStream stream(settings);
        TempFile const file(stream.send(40).captures()[0]);
        auto const shown = runCompanion({"show", "--quiet", file.path()});
        std::string const last = shown.out.substr(shown.out.rfind("\n\n") + 2);
        auto const place = placesIn(file.path()).back();
        EXPECT_EQ(runCompanion({"show", place}).out, last);
    }
}

TEST(ShowPlaces, OfFramesOfOtherProtocolsAreNamed) {
    TempFile const file(CaptureBuilder().add(1, 0, Bytes(60)).bytes());
    auto const result = runCompanion({"show", file.path() + "@24"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(file.path() + ": the frame at 40 is neither GOOSE nor SV"));
}

TEST(ShowPlaces, DoNotGoWithOptionsThatSelect) {
    TempFile const file(smallCapture());
    auto const place = placesIn(file.path())[0];
    expectUsageError({"show", place, "--protocol", "sv"});
    expectUsageError({"show", place, "--from", "2024-01-01"});
    expectUsageError({"show", place, "--limit", "1"});
}

TEST(ShowPlaces, InAFileThatCannotBeReadAreNamedOnce) {
    TempDir const folder;
    auto const missing = folder.file("missing.pcap");
    auto const result = runCompanion({"show", missing + "@70", missing + "@80"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(missing + ": No such file or directory"));
    EXPECT_EQ(result.out, "");
}

TEST(ShowPlaces, InAFileWhoseNameNoFileCanHaveKeepNobodyFromTheOthers) {
    TempFile const file(smallCapture());
    auto const place = placesIn(file.path())[0];
    auto const tooLong = std::string(300, 'x');
    auto const result = runCompanion({"show", "-f", "json", tooLong + "@70", place});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, complaint(tooLong + ": File name too long"));
    EXPECT_EQ(shownPlaces(jsonOf(result.out)), Arguments{place});
}

TEST(ShowPlaces, InAFolderAreNotPassedOverInSilence) {
    TempDir const folder;
    auto const file = folder.write("1.pcap", smallCapture());
    auto const place = placesIn(file)[0];
    auto const result = runCompanion({"show", folder.path() + place.substr(place.rfind('@'))});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err, "");
}

TEST(ShowPlaces, OfAFileThatIsStandardInputTooAreNotPassedOverInSilence) {
    TempFile const file(smallCapture());
    auto const places = placesIn(file.path());
    Surroundings const redirected{.inputFile = file.path()};
    auto const second = "-" + places[1].substr(places[1].rfind('@'));
    auto const result = runCompanion({"show", "-f", "json", "--", places[0], second}, redirected);
    EXPECT_TRUE(linesOf(result.out).size() == 2 || result.status == 2);
}

TEST(ShowPlaces, BesideFilesAreWrongUsage) {
    TempFile const file(smallCapture());
    auto const place = placesIn(file.path())[0];
    expectUsageError({"show", place, file.path()});
    expectUsageError({"show", "-", place});
    expectUsageError({"show", place, file.path() + "@"});
    expectUsageError({"show"});
}

TEST(PacketLocator, IsAFileAndANumberBehindTheLastAt) {
    using TalIec61850Tools::parsePacketLocator;
    for (auto const* text : {"", "a", "@1", "a@", "a@x", "a@1x", "a@-1", "a@+1", "a@ 1", "a@0x10",
                             "a@1.5", "a@18446744073709551616"}) {
        EXPECT_FALSE(parsePacketLocator(text)) << text;
    }
    auto const locator = parsePacketLocator("no/such@folder/a@b@4711");
    ASSERT_TRUE(locator);
    EXPECT_EQ(locator->file, "no/such@folder/a@b");
    EXPECT_EQ(locator->position, 4711U);
    EXPECT_EQ(parsePacketLocator("a@18446744073709551615")->position, 18446744073709551615U);
    EXPECT_EQ(parsePacketLocator("\xff\n@007")->position, 7U);
}

}  // namespace
}  // namespace TalTest::ShowPlacesTest
