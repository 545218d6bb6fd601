// The values that a page holds, as its script reads them.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "report/ReportPage.hpp"
#include "tools/SampleTraffic.hpp"
#include "tools/report/NumberPacker.hpp"

namespace TalTest::ReportValuesTest {
namespace {

using Json = nlohmann::json;

TEST_F(ReportPage, HoldsAllValuesExactly) {
    WaveformStream const whole = waveOf({});
    WaveformStream const floats = waveOf(floatWave());
    WaveformStream const doubles = waveOf(doubleWave());
    open(report(captureOf({&whole, &floats, &doubles}),
                {"--layout", "float64,quality,float64,quality,float64,quality"}));
    std::size_t number = 0;
    for (WaveformStream const* const stream : {&whole, &floats, &doubles}) {
        auto const rows = stream->rows(true);
        auto const members = valuesAmong(stream->settings().members);
        std::string const segment = "streams[" + std::to_string(number++) + "].segments[0]";
        ASSERT_EQ(browser().ask(segment + ".count"), rows.size());
        Json const times =
            browser().ask("[...Array(" + segment + ".count).keys()].map((i) => String(" + segment +
                          ".start + BigInt(" + segment + ".timeOf(i))))");
        for (std::size_t channel = 0; channel < members.size(); ++channel) {
            Json const values = browser().ask("Array.from(" + segment + ".channels[" +
                                              std::to_string(channel) + "].levels[0].min)");
            for (std::size_t i = 0; i < rows.size(); ++i) {
                ASSERT_EQ(times[i], std::to_string(rows[i].time)) << i;
                if (!rows[i].isMissing) {
                    ASSERT_EQ(values[i].get<double>(),
                              toReal(members[channel], rows[i].values[channel]))
                        << "channel " << channel << ", row " << i;
                }
            }
        }
    }
}

TEST_F(ReportPage, UnpacksAnyNumbers) {
    open(report(Bytes(captureOf({}))));
    std::mt19937 random(61850);
    std::vector<std::vector<double>> lists = {
        {}, {0}, {-1, 1, INT32_MIN, INT32_MAX, INT32_MIN, 0}, {0.5, -0.5, 1e300, -1e-300}, {1.5}};
    for (std::uint32_t const size : {1U, 128U, 129U, 1000U, 5000U}) {
        std::vector<double> noise;
        std::vector<double> wave;
        for (std::uint32_t i = 0; i < size; ++i) {
            noise.push_back(static_cast<std::int32_t>(random()));
            wave.push_back(std::round(2e9 * std::sin(i * 0.0785)) + (i % 3));
        }
        wave[size / 2] = INT32_MIN;
        lists.push_back(wave);
        lists.push_back(wave);  // the channel before tells it
        lists.push_back(noise);
    }
    std::string octets;
    TalIec61850Tools::NumberPacker packer(octets);
    Json packed = Json::array();
    for (auto const& list : lists) {
        packed.push_back(Json::parse(packer.packChannel(list).dump()));
    }
    std::vector<int> numbers;
    for (char const octet : octets + std::string(8, '\0')) {
        numbers.push_back(static_cast<std::uint8_t>(octet));
    }
    Json const unpacked = browser().ask(
        "(() => { const unpacker = new Unpacker(new Uint8Array(" + Json(numbers).dump() +
        ")); return " + packed.dump() +
        ".map((each) => Array.from(unpacker.unpackChannel(each), (x) => x === 0 ? 0 : x)); })()");
    for (std::size_t i = 0; i < lists.size(); ++i) {
        EXPECT_EQ(unpacked[i].get<std::vector<double>>(), lists[i]) << i;
    }
}

}  // namespace
}  // namespace TalTest::ReportValuesTest
