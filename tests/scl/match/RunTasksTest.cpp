// Tasks on several threads, and what they throw.

#include <gtest/gtest.h>

#include <TalIec61850Scl/match/RunTasks.hpp>
#include <atomic>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/WatchedHeap.hpp"

namespace TalTest::RunTasksTest {
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

TEST(RunTasks, RunsEachTaskOrNoneWhereMemoryEnds) {
    std::atomic<int> runs = 0;
    std::function<void(std::size_t)> const task = [&](std::size_t) { ++runs; };
    bool wasHit = true;
    std::size_t allocation = 0;
    while (wasHit) {
        ++allocation;
        runs = 0;
        bool isThrown = false;
        {
            HeapFault const fault(allocation, Failing::once);
            try {
                runTasks(20, 4, task);
            } catch (std::bad_alloc const&) {
                isThrown = true;
            }
            wasHit = HeapFault::wasHit();
        }
        EXPECT_EQ(runs.load(), isThrown ? 0 : 20) << "allocation " << allocation;
    }
    EXPECT_GE(allocation, 5U) << "each of the three other threads takes memory";
}

}  // namespace
}  // namespace TalTest::RunTasksTest
