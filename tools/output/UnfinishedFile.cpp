#include "tools/output/UnfinishedFile.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>

namespace TalIec61850Tools {

namespace {

// Static, because a signal handler can be given nothing.
std::array<char, PATH_MAX> guardedPath{};
volatile std::sig_atomic_t isGuarding = 0;

extern "C" void removeAndEnd(int signal) {
    if (isGuarding != 0) {
        ::unlink(guardedPath.data());
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

}  // namespace

void guardUnfinishedFile(std::string const& path) noexcept {
    if (path.size() >= guardedPath.size()) {
        return;
    }
    std::copy_n(path.c_str(), path.size() + 1, guardedPath.begin());
    isGuarding = 1;
    for (int const signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ, SIGXCPU}) {
        // What is ignored, as nohup has it, stays so.
        if (std::signal(signal, removeAndEnd) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

void releaseUnfinishedFile() noexcept { isGuarding = 0; }

}  // namespace TalIec61850Tools
