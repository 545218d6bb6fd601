// Tasks on several threads, and what they throw.

#include <gtest/gtest.h>

#include <TalIec61850Scl/match/RunTasks.hpp>
#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

namespace TalTest {
namespace {

using TalIec61850Scl::detail::runTasks;

TEST(RunTasks, RunsEachTaskOnce) {
    for (std::size_t const jobs : {0U, 1U, 3U, 200U}) {
        std::vector<std::atomic<int>> runs(100);
        runTasks(runs.size(), jobs, [&](std::size_t task) { ++runs[task]; });
        for (auto const& run : runs) {
            EXPECT_EQ(run.load(), 1);
        }
    }
    runTasks(0, 0, [](std::size_t) { FAIL(); });
}

TEST(RunTasks, ThrowsWhatTheFirstTaskThrowsWhenAllHaveEnded) {
    for (std::size_t const jobs : {1U, 4U}) {
        std::atomic<int> runs = 0;
        try {
            runTasks(50, jobs, [&](std::size_t task) {
                ++runs;
                if (task == 7 || task == 31) {
                    throw std::runtime_error(std::to_string(task));
                }
            });
            FAIL();
        } catch (std::runtime_error const& failure) {
            EXPECT_STREQ(failure.what(), "7");
        }
        EXPECT_EQ(runs.load(), 50);
    }
}

}  // namespace
}  // namespace TalTest
