#include <TalIec61850Analysis/traffic/RunJobs.hpp>
#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace TalIec61850Analysis::detail {

namespace {

class Jobs {
public:
    Jobs(std::size_t count, std::function<void(std::size_t)> const& task)
        : count_(count), task_(task) {}

    void run(std::size_t jobs) {
        jobs = countJobs(count_, jobs);
        std::vector<std::thread> threads;
        threads.reserve(jobs);
        for (std::size_t i = 1; i < jobs; ++i) {
            try {
                threads.emplace_back([this] { work(); });
            } catch (std::exception const&) {
                break;  // fewer threads do the same
            }
        }
        work();
        for (std::thread& thread : threads) {
            thread.join();
        }
        if (failure_) {
            std::rethrow_exception(failure_);
        }
    }

private:
    void work() noexcept {
        for (std::size_t number = next_++; number < count_; number = next_++) {
            try {
                task_(number);
            } catch (...) {
                std::lock_guard const lock(mutex_);
                if (!failure_ || number < failed_) {
                    failure_ = std::current_exception();
                    failed_ = number;
                }
            }
        }
    }

    std::size_t count_;
    std::function<void(std::size_t)> const& task_;
    std::atomic<std::size_t> next_ = 0;
    std::mutex mutex_;
    /// Of the task with the lowest number that failed.
    std::exception_ptr failure_;
    std::size_t failed_ = 0;
};

}  // namespace

std::size_t countJobs(std::size_t count, std::size_t jobs) {
    std::size_t const most = jobs == 0 ? std::max(1U, std::thread::hardware_concurrency()) : jobs;
    return std::min(most, count);
}

void runJobs(std::size_t count, std::size_t jobs, std::function<void(std::size_t)> const& task) {
    Jobs(count, task).run(jobs);
}

}  // namespace TalIec61850Analysis::detail
