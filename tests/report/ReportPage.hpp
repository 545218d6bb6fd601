#pragma once

#include <gtest/gtest.h>

#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "report/Browser.hpp"
#include "support/Bytes.hpp"
#include "support/TempFile.hpp"
#include "support/WaveformStream.hpp"

namespace TalTest {

/// Nanoseconds since 1970 as an instant.
[[nodiscard]] TalIec61850Analysis::CaptureTime instantOf(std::int64_t time);

/// A trip: the message of a relay before it, after it, and when it is over.
[[nodiscard]] std::vector<WaveformStream::Captured> tripOf(std::int64_t start);

/// 2,000 samples of which three are missing.
[[nodiscard]] WaveformStream waveOf(WaveformSettings const& settings);

/// Three channels of FLOAT32, 60 Hz.
[[nodiscard]] WaveformSettings floatWave();

/// Three channels of FLOAT64.
[[nodiscard]] WaveformSettings doubleWave();

/// A page that `report` writes, in a browser. One browser is started for all tests of the program.
class ReportPage : public testing::Test {
protected:
    void SetUp() override;
    /// Expects that the page complained of nothing, and asked for nothing, until now.
    void TearDown() override;

    [[nodiscard]] static Browser& browser();

    /// Whether the program may complain of what it reads.
    enum class Faults { none, mayBe };

    /// Writes a page of a capture.
    /// @return its path
    std::string report(Bytes const& capture, std::vector<std::string> const& options = {},
                       std::string const& name = "bay1.pcap", Faults faults = Faults::none);

    /// Opens a page, and expects that nothing is wrong with it.
    static void open(std::string const& page, std::string const& link = {});
    static void openAt(std::string const& page, std::int64_t time, std::int64_t span = 40'000'000);

    /// The texts of the rows of channels in the readout.
    [[nodiscard]] static nlohmann::json readout();
    /// What the first cursor says that its time is.
    [[nodiscard]] static std::string cursorTime();
    /// Nanoseconds from one end of the view to the other.
    [[nodiscard]] static double span();

    static void press(std::string const& key);
    /// Clicks the middle of an element, or another place of it.
    /// @param element  an expression of the page's language
    /// @param x        pixels from its left edge, likewise; the middle without one
    static void click(std::string const& element, std::string const& x = {});

    TempDir folder_;
};

}  // namespace TalTest
