#include <TalIec61850Scl/match/RunTasks.hpp>
#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace TalIec61850Scl::detail {

namespace {

/// Tasks that are left, and what became of the others.
class TaskList {
public:
    TaskList(std::size_t count, std::function<void(std::size_t)> const& task)
        : task_(task), failures_(count) {}

    /// Takes one task after the other, until none is left.
    void work() noexcept {
        for (std::size_t number = next_++; number < failures_.size(); number = next_++) {
            try {
                task_(number);
            } catch (...) {
                failures_[number] = std::current_exception();
            }
        }
    }

    void rethrowFirst() const {
        for (std::exception_ptr const& failure : failures_) {
            if (failure) {
                std::rethrow_exception(failure);
            }
        }
    }

private:
    std::function<void(std::size_t)> const& task_;
    std::atomic<std::size_t> next_ = 0;
    /// By task; each is written by the thread that runs it.
    std::vector<std::exception_ptr> failures_;
};

}  // namespace

void runTasks(std::size_t count, std::size_t jobs, std::function<void(std::size_t)> const& task) {
    std::size_t const most = jobs == 0 ? std::max(1U, std::thread::hardware_concurrency()) : jobs;
    TaskList tasks(count, task);
    std::vector<std::thread> threads;
    threads.reserve(std::min(most, count));
    for (std::size_t i = 1; i < std::min(most, count); ++i) {
        try {
            threads.emplace_back([&] { tasks.work(); });
        } catch (std::exception const&) {
            break;  // no more threads, or no memory for one: fewer do the same
        }
    }
    tasks.work();
    for (std::thread& thread : threads) {
        thread.join();
    }
    tasks.rethrowFirst();
}

}  // namespace TalIec61850Scl::detail
