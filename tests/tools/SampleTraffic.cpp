#include "tools/SampleTraffic.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <filesystem>

#include "support/CaptureFile.hpp"
#include "tools/StreamsTraffic.hpp"

namespace TalTest {

namespace {

/// Reads floating-point numbers as they were before they became text.
void expectValue(Json const& value, WaveMember member, std::int64_t expected) {
    if (member == WaveMember::float32) {
        EXPECT_EQ(static_cast<float>(value.get<double>()),
                  static_cast<float>(std::bit_cast<double>(expected)));
    } else if (member == WaveMember::float64) {
        EXPECT_EQ(value.get<double>(), std::bit_cast<double>(expected));
    } else {
        EXPECT_EQ(value.get<std::int64_t>(), expected);
    }
}

}  // namespace

double toReal(WaveMember member, std::int64_t value) {
    return member == WaveMember::float32 || member == WaveMember::float64
               ? std::bit_cast<double>(value)
               : static_cast<double>(value);
}

std::vector<WaveMember> valuesAmong(std::vector<WaveMember> const& members) {
    std::vector<WaveMember> values;
    std::copy_if(members.begin(), members.end(), std::back_inserter(values), [](WaveMember member) {
        return member != WaveMember::quality && member != WaveMember::timestamp;
    });
    return values;
}

Bytes captureOf(std::vector<WaveformStream const*> const& streams,
                std::vector<WaveformStream::Captured> const& others) {
    std::vector<WaveformStream::Captured> all = others;
    for (WaveformStream const* const stream : streams) {
        all.insert(all.end(), stream->captured().begin(), stream->captured().end());
    }
    std::stable_sort(all.begin(), all.end(),
                     [](auto const& a, auto const& b) { return a.time < b.time; });
    CaptureBuilder capture(CaptureVariant::nanoLittle);
    for (WaveformStream::Captured const& one : all) {
        capture.add(static_cast<std::uint32_t>(one.time / 1'000'000'000),
                    static_cast<std::uint32_t>(one.time % 1'000'000'000), one.frame);
    }
    return capture.bytes();
}

Bytes captureOf(std::vector<WaveformStream const*> const& streams) {
    return captureOf(streams, {});
}

std::vector<Json> samplesOf(Arguments const& arguments, std::string* notes) {
    auto const result = runCompanion(joined({"samples", "-f", "json", "-q"}, arguments));
    EXPECT_EQ(result.status, 0) << result.err;
    if (notes == nullptr) {
        EXPECT_EQ(result.err, "");
    } else {
        *notes = result.err;
    }
    return jsonOf(result.out);
}

WaveformSettings declaredWave(std::uint32_t rate, std::uint32_t asdus) {
    WaveformSettings settings;
    settings.rate = rate;
    settings.asdus = asdus;
    settings.smpRate = static_cast<std::uint16_t>(rate);
    settings.smpMod = 1;
    return settings;
}

void expectWaveform(std::vector<Json> const& rows, std::vector<WaveformRow> const& expected,
                    WaveformSettings const& settings) {
    auto const members = valuesAmong(settings.members);
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t i = 0; i < rows.size() && !testing::Test::HasFailure(); ++i) {
        Json const& row = rows[i];
        WaveformRow const& wave = expected[i];
        SCOPED_TRACE(row.dump());
        EXPECT_EQ(row["missing"], wave.isMissing);
        EXPECT_EQ(row["smpCnt"], wave.smpCnt);
        if (wave.time != WaveformRow::noTime) {
            EXPECT_EQ(row["sampleTimeNs"], wave.time);
        }
        if (wave.isMissing) {
            for (char const* const name : {"time", "timeNs", "position", "values", "quality"}) {
                EXPECT_TRUE(row[name].is_null()) << name;
            }
            continue;
        }
        EXPECT_EQ(row["timeNs"], wave.arrival);
        EXPECT_EQ(row["position"], wave.fileOffset);
        EXPECT_EQ(row["asdu"], wave.asdu + 1);
        ASSERT_EQ(row["values"].size(), wave.values.size());
        for (std::size_t channel = 0; channel < wave.values.size(); ++channel) {
            expectValue(row["values"][channel], members[channel], wave.values[channel]);
        }
        if (wave.qualities.empty()) {
            EXPECT_TRUE(row["quality"].is_null());
        } else {
            EXPECT_EQ(row["quality"], Json(wave.qualities));
        }
    }
}

ReadComtrade recordAt(std::string const& base) {
    if (std::filesystem::exists(base + ".cff")) {
        return ComtradeReader::readFile(readFile(base + ".cff"));
    }
    return ComtradeReader::read(textOf(base + ".cfg"), readFile(base + ".dat"));
}

std::string textOf(std::string const& path) {
    auto const octets = readFile(path);
    return {octets.begin(), octets.end()};
}

std::vector<std::string> namesIn(std::string const& folder) {
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace TalTest
