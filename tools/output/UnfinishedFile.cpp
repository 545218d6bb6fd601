#include "tools/output/UnfinishedFile.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <cstdio>
#include <utility>

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

void guard(std::string const& path) {
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

}  // namespace

UnfinishedFile::UnfinishedFile(std::string path) : path_(std::move(path)) { guard(path_); }

UnfinishedFile::~UnfinishedFile() {
    if (!path_.empty()) {
        ::unlink(path_.c_str());
    }
    isGuarding = 0;
}

bool UnfinishedFile::finishAs(std::string const& name) {
    if (std::rename(path_.c_str(), name.c_str()) != 0) {
        return false;
    }
    path_.clear();
    isGuarding = 0;
    return true;
}

}  // namespace TalIec61850Tools
