#pragma once

// The recorded captures and what a plain count of their frames finds.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace TalTest {

struct RecordedCapture {
    std::string name;
    std::size_t gooseFrames = 0;
    std::size_t svFrames = 0;
    /// Distinct addresses, APPID and names, whatever the VLAN, HSR lane or PRP network.
    std::size_t streams = 0;
    /// Distinct streams by the rules of the store, and why they are not as many as `streams`.
    std::size_t storedStreams = streams;
    std::string whyOthers = {};
};

std::vector<RecordedCapture> const& recordedCaptures();

void PrintTo(RecordedCapture const& capture, std::ostream* out);

/// A test of one recorded capture; skipped where the file is not there.
class RecordedCaptureTest : public testing::TestWithParam<RecordedCapture> {
protected:
    void SetUp() override;

    [[nodiscard]] std::string const& path() const { return path_; }

private:
    std::string path_;
};

/// For the names of parameterised tests.
std::string testName(testing::TestParamInfo<RecordedCapture> const& info);

}  // namespace TalTest
