#include "tools/output/UnfinishedFile.hpp"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <memory>
#include <new>
#include <thread>
#include <utility>

namespace TalIec61850Tools {

/// A path that a signal may have to remove. None is ever freed, and its path never changed: a
/// handler on another thread may still read it after its file is finished.
struct GuardedPath {
    GuardedPath(std::string givenPath, GuardedPath const* olderPath)
        : path(std::move(givenPath)), older(olderPath) {}

    std::string path;
    GuardedPath const* older;
    std::atomic<bool> isGuarded = true;
};

namespace {

/// The path that was guarded last; the others follow from it.
std::atomic<GuardedPath const*> newestPath = nullptr;
/// How many handlers are at work, or about to end the program.
std::atomic<int> handlersAtWork = 0;
/// Files take their names: a signal is to wait.
std::atomic<bool> isTogether = false;
/// The signal that waits; 0 for none.
std::atomic<int> waitingSignal = 0;
static_assert(std::atomic<GuardedPath const*>::is_always_lock_free &&
                  std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "a signal handler may use lock-free atomics only");

extern "C" void removeAndEnd(int signal) {
    // This is told before it is asked whether to wait; where files take their names it is the other
    // way round. So one of the two sees the other.
    handlersAtWork.fetch_add(1);
    if (isTogether.load()) {
        waitingSignal.store(signal);
        handlersAtWork.fetch_sub(1);
        return;
    }
    for (GuardedPath const* path = newestPath.load(); path != nullptr; path = path->older) {
        if (path->isGuarded.load()) {
            ::unlink(path->path.c_str());
        }
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void handleSignals() {
    for (int const signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ, SIGXCPU}) {
        // What is ignored, as nohup has it, stays so.
        if (std::signal(signal, removeAndEnd) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

}  // namespace

UnfinishedFile::UnfinishedFile(std::string path) : path_(std::move(path)) {
    try {
        guard_ = std::make_unique<GuardedPath>(path_, newestPath.load()).release();
    } catch (std::bad_alloc const&) {
        ::unlink(path_.c_str());
        throw;
    }
    newestPath.store(guard_);
    handleSignals();
}

UnfinishedFile::~UnfinishedFile() {
    if (!path_.empty()) {
        ::unlink(path_.c_str());
        guard_->isGuarded.store(false);
    }
}

bool UnfinishedFile::finishAs(std::string const& name) {
    if (std::rename(path_.c_str(), name.c_str()) != 0) {
        return false;
    }
    path_.clear();
    guard_->isGuarded.store(false);
    return true;
}

UnfinishedFile::Together::Together() {
    isTogether.store(true);
    // A handler that did not see this ends the program.
    while (handlersAtWork.load() != 0) {
        std::this_thread::yield();
    }
}

UnfinishedFile::Together::~Together() {
    isTogether.store(false);
    if (int const signal = waitingSignal.exchange(0)) {
        std::raise(signal);
    }
}

}  // namespace TalIec61850Tools
