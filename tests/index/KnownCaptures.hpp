#pragma once

// The captures that the library is compared on: the own ones, and the recorded ones that are there.

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"
#include "support/TempFile.hpp"

namespace TalTest {

/// A capture and what a count of its frames finds, which is none of the library's.
struct KnownCapture {
    std::string name;
    std::size_t gooseFrames = 0;
    std::size_t svFrames = 0;
    /// Distinct streams by the rules of the store.
    std::size_t streams = 0;
    /// Frames whose PDU runs past the captured octets, or that have none.
    std::size_t withoutPosition = 0;
    bool isOwn = false;
    /// How far tshark is a measure, and why no further.
    Dissected dissected = Dissected::inFull;
    /// The GOOSE and SV frames that tshark sees.
    std::size_t dissectedFrames = gooseFrames + svFrames;
    std::string whyDissected = {};
    /// Why decoded packets are not what their frames hold.
    std::string whyNotDecoded = {};

    [[nodiscard]] std::size_t frames() const { return gooseFrames + svFrames; }
};

/// All of them. Of the recorded ones those that are not there are left out, unless they must be
/// there: then a test of one fails.
std::vector<KnownCapture> const& knownCaptures();

/// Those for which `isWanted` holds.
std::vector<KnownCapture> capturesWith(bool (*isWanted)(KnownCapture const&));

/// Those of these names.
std::vector<KnownCapture> capturesNamed(std::initializer_list<char const*> names);

/// A capture of frames with thirteen ASDUs of different names, and of others perhaps.
struct ThirteenAsdus {
    KnownCapture capture;
    std::vector<std::string> svIDs;
    /// Those with thirteen ASDUs.
    std::size_t frames = 0;
};
std::vector<ThirteenAsdus> capturesOfThirteenAsdus();

void PrintTo(KnownCapture const& capture, std::ostream* out);

/// The file of a capture; a failure of the test where there is none.
std::string pathOf(KnownCapture const& capture);

/// A test of one capture.
class KnownCaptureTest : public testing::TestWithParam<KnownCapture> {
protected:
    void SetUp() override;

    [[nodiscard]] std::string const& path() const { return path_; }

    /// The same capture for readers that drop a record that is cut: zeros are what is missing. Any
    /// offset in one is the same in the other.
    [[nodiscard]] std::string const& wholePath();

private:
    std::string path_;
    std::optional<TempFile> whole_;
};

/// For the names of parameterised tests.
std::string testName(testing::TestParamInfo<KnownCapture> const& info);

}  // namespace TalTest
