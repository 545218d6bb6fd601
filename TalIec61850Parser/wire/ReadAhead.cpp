#include <TalIec61850Parser/wire/ReadAhead.hpp>
#include <csignal>
#include <utility>

namespace TalIec61850Parser::wire {

namespace {

/// Keeps signals from this thread, and from threads that it starts, for as long as it lives. Those
/// that a fault of the thread itself causes still arrive.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t blocked{};
        sigfillset(&blocked);
        for (int const fault : {SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGTRAP}) {
            sigdelset(&blocked, fault);
        }
        pthread_sigmask(SIG_SETMASK, &blocked, &before_);
    }
    BlockedSignals(BlockedSignals const&) = delete;
    BlockedSignals& operator=(BlockedSignals const&) = delete;
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

}  // namespace

std::thread startQuietThread(std::function<void()> run) {
    BlockedSignals const blocked;
    return std::thread(std::move(run));
}

ReadAhead::ReadAhead(ReadOctets read, StartThread start)
    : read_(std::move(read)),
      octets_(std::make_unique_for_overwrite<std::uint8_t[]>(kBlocks * (kHeadroom + kBlockSize))),
      thread_(start([this] { fill(); })) {}

ReadAhead::~ReadAhead() {
    {
        std::lock_guard const lock(mutex_);
        isStopped_ = true;
    }
    canFill_.notify_one();
    thread_.join();
}

std::span<std::uint8_t> ReadAhead::take() {
    std::unique_lock lock(mutex_);
    canTake_.wait(lock, [this] { return taken_ < filled_; });
    std::size_t const number = taken_++;
    std::size_t const size = sizes_[number % kBlocks];
    if (size == 0 && failure_) {
        std::rethrow_exception(failure_);
    }
    return block(number).first(size);
}

void ReadAhead::giveBack(std::size_t kept) {
    bool isHalfFree = false;
    {
        std::lock_guard const lock(mutex_);
        givenBack_ = taken_ - kept;
        isHalfFree = filled_ - givenBack_ <= kBlocks / 2;
    }
    if (isHalfFree) {
        canFill_.notify_one();
    }
}

void ReadAhead::fill() {
    for (std::size_t number = 0;; ++number) {
        {
            std::unique_lock lock(mutex_);
            if (number - givenBack_ == kBlocks) {
                // Woken for several blocks at once: that is dear beside reading one.
                canFill_.wait(lock,
                              [&] { return isStopped_ || number - givenBack_ <= kBlocks / 2; });
            }
            if (isStopped_) {
                return;
            }
        }
        std::size_t size = 0;
        std::exception_ptr failure;
        try {
            size = read_(block(number));
        } catch (...) {
            failure = std::current_exception();
        }
        {
            std::lock_guard const lock(mutex_);
            sizes_[number % kBlocks] = size;
            failure_ = std::move(failure);
            filled_ = number + 1;
        }
        canTake_.notify_one();
        if (size == 0) {
            return;
        }
    }
}

}  // namespace TalIec61850Parser::wire
