// Octets of captures, and how much is read for them.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/traffic/CaptureWindow.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "support/Bytes.hpp"
#include "support/OctetsRead.hpp"
#include "support/TempFile.hpp"

namespace TalIec61850Analysis::detail::CaptureWindowTest {
namespace {

using namespace TalTest;

constexpr std::size_t kFileSize = std::size_t{4} << 20U;

Bytes numbered() {
    Bytes octets(kFileSize);
    for (std::size_t i = 0; i < octets.size(); ++i) {
        octets[i] = static_cast<std::uint8_t>(i * 2654435761U >> 13U);
    }
    return octets;
}

bool areThose(Octets octets, Bytes const& all, std::size_t at, std::size_t size) {
    return octets.size() == size &&
           std::equal(octets.begin(), octets.end(), all.begin() + static_cast<std::ptrdiff_t>(at));
}

TEST(CaptureWindows, ReadWhatFollowsOnce) {
    Bytes const all = numbered();
    TempFile const file(all);
    CaptureWindow window({file.path()});
    std::uint64_t const begin = octetsReadHere();
    for (std::size_t at = 0; at + 150 <= all.size(); at += 150) {
        ASSERT_TRUE(areThose(window.at(0, at, 100), all, at, 100)) << at;
    }
    EXPECT_LT(octetsReadHere() - begin, kFileSize + kFileSize / 8);
}

TEST(CaptureWindows, ReadLittleForALookHereAndThere) {
    Bytes const all = numbered();
    TempFile const file(all);
    CaptureWindow window({file.path()});
    std::uint64_t const begin = octetsReadHere();
    std::size_t looks = 0;
    for (std::size_t at = 50'000; at + 100 <= all.size(); at += 150'000, ++looks) {
        ASSERT_TRUE(areThose(window.at(0, at, 100), all, at, 100)) << at;
    }
    EXPECT_LT(octetsReadHere() - begin, looks * (std::size_t{16} << 10U));
}

TEST(CaptureWindows, HaveAllThatIsAskedFor) {
    Bytes const all = numbered();
    TempFile const file(all);
    CaptureWindow window({file.path()});
    constexpr std::size_t kMost = CaptureWindow::kMostOctets;
    EXPECT_TRUE(areThose(window.at(0, 0, kMost), all, 0, kMost));
    EXPECT_TRUE(areThose(window.at(0, 1'000'000, kMost), all, 1'000'000, kMost));
    EXPECT_TRUE(areThose(window.at(0, 1'100'000, kMost), all, 1'100'000, kMost));
    EXPECT_TRUE(areThose(window.at(0, 999'000, kMost), all, 999'000, kMost));
    EXPECT_TRUE(areThose(window.at(0, kFileSize - 10, 100), all, kFileSize - 10, 10));
    EXPECT_TRUE(window.at(0, kFileSize, 100).empty());
    EXPECT_TRUE(window.at(0, kFileSize + 500'000, 100).empty());
}

}  // namespace
}  // namespace TalIec61850Analysis::detail::CaptureWindowTest
