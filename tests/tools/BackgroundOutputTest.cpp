// An output that is written on another thread holds what it would otherwise.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <future>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"
#include "tools/output/BackgroundOutput.hpp"

namespace TalIec61850Tools::BackgroundOutputTest {
namespace {

namespace fs = std::filesystem;

using TalTest::TempDir;

/// More than is handed over at once.
constexpr std::size_t kSeveralPieces = std::size_t{3} << 20U;

std::future<void> startNone(std::function<void()> /*run*/) {
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
}

std::thread::id writer;
std::future<void> startAndNote(std::function<void()> run) {
    return std::async(std::launch::async, [run = std::move(run)] {
        writer = std::this_thread::get_id();
        run();
    });
}

/// Letters that are nowhere repeated for long.
std::string letters(std::size_t size) {
    std::string all;
    all.reserve(size);
    for (std::uint32_t number = 1; all.size() < size;
         number = number * 1'664'525U + 1'013'904'223U) {
        all += static_cast<char>('a' + (number >> 24U) % 26U);
    }
    return all;
}

std::string written(std::vector<std::string> const& texts, BackgroundOutput::Start start) {
    TempDir const folder;
    Output output(folder.file("out"));
    BackgroundOutput background(output, start);
    for (std::string const& each : texts) {
        background.write(each);
    }
    background.finish();
    output.finish();
    auto const octets = TalTest::readFile(folder.file("out"));
    return {octets.begin(), octets.end()};
}

TEST(BackgroundOutput, HoldsAllThatWasWrittenInItsOrder) {
    std::string const all = letters(2 * kSeveralPieces);
    std::vector<std::string> texts;
    std::size_t done = 0;
    for (std::size_t size = 0; done < all.size(); size = 2 * size + 1) {
        texts.push_back(all.substr(done, size));
        done += texts.back().size();
    }
    EXPECT_TRUE(written(texts, &startAndNote) == all);
    EXPECT_TRUE(written(texts, &startNone) == all);
}

TEST(BackgroundOutput, IsWrittenByAnotherThread) {
    writer = std::this_thread::get_id();
    auto const all = letters(kSeveralPieces);
    EXPECT_TRUE(written({all}, &startAndNote) == all);
    EXPECT_NE(writer, std::this_thread::get_id());
}

TEST(BackgroundOutput, OfNothingIsAnEmptyFile) { EXPECT_EQ(written({}, &startAndNote), ""); }

TEST(BackgroundOutput, TellsThatADeviceIsFullWhoeverWrites) {
    for (auto const start : {&startAndNote, &startNone}) {
        Output output("/dev/full");
        BackgroundOutput background(output, start);
        EXPECT_THROW(
            {
                background.write(letters(kSeveralPieces));
                background.finish();
            },
            OutputError);
    }
}

TEST(BackgroundOutput, TellsItBeforeTheLastPiece) {
    Output output("/dev/full");
    BackgroundOutput background(output);
    background.write(letters(kSeveralPieces));
    EXPECT_THROW(background.write(letters(kSeveralPieces)), OutputError);
}

TEST(BackgroundOutput, ThatIsNotFinishedLeavesNoFile) {
    TempDir const folder;
    {
        Output output(folder.file("out"));
        BackgroundOutput background(output);
        background.write(letters(kSeveralPieces));
        background.write("more");
    }
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

}  // namespace
}  // namespace TalIec61850Tools::BackgroundOutputTest
