#include "tools/output/UnfinishedFile.hpp"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <forward_list>
#include <memory>
#include <new>
#include <utility>

namespace TalIec61850Tools {

namespace {

using Paths = std::forward_list<std::string>;

/// Every path that was guarded. None is ever changed or freed: a handler on another thread may
/// still read it after its file is finished.
Paths& guardedPaths() {
    static Paths& paths = *std::make_unique<Paths>().release();
    return paths;
}

/// The path that a signal is to remove; null if there is none.
std::atomic<char const*> guardedPath = nullptr;
static_assert(std::atomic<char const*>::is_always_lock_free,
              "a signal handler may use lock-free atomics only");

extern "C" void removeAndEnd(int signal) {
    if (char const* const path = guardedPath.load(std::memory_order_acquire)) {
        ::unlink(path);
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void guard(std::string const& path) {
    guardedPath.store(guardedPaths().emplace_front(path).c_str(), std::memory_order_release);
    for (int const signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ, SIGXCPU}) {
        // What is ignored, as nohup has it, stays so.
        if (std::signal(signal, removeAndEnd) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

void endGuard() { guardedPath.store(nullptr, std::memory_order_release); }

}  // namespace

UnfinishedFile::UnfinishedFile(std::string path) : path_(std::move(path)) {
    try {
        guard(path_);
    } catch (std::bad_alloc const&) {
        ::unlink(path_.c_str());
        throw;
    }
}

UnfinishedFile::~UnfinishedFile() {
    if (!path_.empty()) {
        ::unlink(path_.c_str());
        endGuard();
    }
}

bool UnfinishedFile::finishAs(std::string const& name) {
    if (std::rename(path_.c_str(), name.c_str()) != 0) {
        return false;
    }
    path_.clear();
    endGuard();
    return true;
}

}  // namespace TalIec61850Tools
