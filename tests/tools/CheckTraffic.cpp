#include "tools/CheckTraffic.hpp"

#include <gtest/gtest.h>

#include "tools/StreamsTraffic.hpp"

namespace TalTest {

StationFiles::StationFiles(FaultyStation& station) : StationFiles(station.captures()) {}

StationFiles::StationFiles(std::vector<Bytes> const& captures) {
    for (Bytes const& capture : captures) {
        paths_.push_back(folder_.write(std::to_string(paths_.size() + 1) + ".pcap", capture));
    }
}

Arguments StationFiles::check(Arguments const& more) const {
    return joined(joined({"check"}, paths_), more);
}

std::vector<Json> checkRows(StationFiles const& files, Arguments const& more) {
    return rowsOf(files.check(joined({"--fail-on", "none"}, more)));
}

std::vector<Json> checkRows(FaultyStation& station, Arguments const& more) {
    return checkRows(StationFiles(station), more);
}

std::vector<std::string> sentencesOf(FaultyStation& station, std::string const& kind) {
    std::vector<std::string> sentences;
    for (Json const& row : checkRows(station, {"--kind", kind})) {
        EXPECT_EQ(row["finding"], kind);
        sentences.push_back(row["text"]);
    }
    return sentences;
}

FaultyStation smallStation() {
    FaultyStation station;
    station.add({.svID = "MU01", .frames = 8000});
    station.add({.svID = "MU02", .source = "02:00:00:00:00:02", .frames = 8000, .start = 60'000});
    station.add(GoosePlan{.firstMessage = 100, .states = {20}, .start = 70'000});
    return station;
}

FaultyStation troubledStation() {
    auto station = smallStation();
    station.drop(0, 1000, 5).repeat(1, 3000, 20'000).drop(2, 8);
    station.changeSvFrom(
        0, 6000, [](SvMessage& message) { message.asdus.front().smpSynch = Unsigned<1>(0); });
    return station;
}

}  // namespace TalTest
