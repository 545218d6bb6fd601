#include "support/Process.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdlib.h>  // posix_openpt is POSIX's
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <thread>

#include "support/TempFile.hpp"

namespace TalTest {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::minutes kPatience(5);

void require(bool isDone, char const* what) {
    if (!isDone) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

/// A terminal: what a program writes to its far end can be read at the near one.
class Terminal {
public:
    explicit Terminal(int columns) : near_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        require(near_ >= 0 && ::grantpt(near_) == 0 && ::unlockpt(near_) == 0, "posix_openpt");
        far_ = ::open(::ptsname(near_), O_RDWR | O_NOCTTY | O_CLOEXEC);
        require(far_ >= 0, "ptsname");
        winsize size{};
        size.ws_col = static_cast<unsigned short>(columns);
        require(::ioctl(far_, TIOCSWINSZ, &size) == 0, "TIOCSWINSZ");
    }
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;
    ~Terminal() {
        ::close(far_);
        ::close(near_);
    }

    [[nodiscard]] int farEnd() const { return far_; }

    /// Takes what has arrived.
    void readInto(std::string& text) const {
        std::array<char, 4096> block{};
        pollfd state{.fd = near_, .events = POLLIN, .revents = 0};
        while (::poll(&state, 1, 0) == 1 && (state.revents & POLLIN) != 0) {
            ssize_t const count = ::read(near_, block.data(), block.size());
            if (count <= 0) {
                return;
            }
            text.append(block.data(), static_cast<std::size_t>(count));
        }
    }

private:
    int near_;
    int far_ = -1;
};

/// What a child is to do with its descriptors before it starts.
class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    FileActions(FileActions const&) = delete;
    FileActions& operator=(FileActions const&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    void open(int number, std::string const& path, int flags) {
        posix_spawn_file_actions_addopen(&actions_, number, path.c_str(), flags, 0600);
    }
    void duplicate(int from, int to) { posix_spawn_file_actions_adddup2(&actions_, from, to); }
    void close(int number) { posix_spawn_file_actions_addclose(&actions_, number); }
    [[nodiscard]] posix_spawn_file_actions_t const* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

std::string readFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> environmentWith(ExtraEnvironment const& extra) {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    for (auto const& variable : extra) {
        std::string const prefix = variable.first + "=";
        std::erase_if(variables, [&](auto const& set) { return set.starts_with(prefix); });
        variables.push_back(prefix + variable.second);
    }
    return variables;
}

std::vector<char*> asArguments(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

void directOutput(FileActions& actions, StandardOutputIs output, std::string const& path) {
    if (output == StandardOutputIs::closed) {
        actions.close(STDOUT_FILENO);
    } else {
        bool const isFull = output == StandardOutputIs::full;
        actions.open(STDOUT_FILENO, isFull ? "/dev/full" : path, O_WRONLY | O_CREAT);
    }
}

/// Waits for the child, and meanwhile takes what it writes to the terminal if there is one.
int waitFor(pid_t child, std::optional<Terminal> const& terminal, std::string& written) {
    auto const deadline = Clock::now() + kPatience;
    for (;;) {
        int state = 0;
        bool const hasEnded = ::waitpid(child, &state, WNOHANG) == child;
        if (terminal) {
            terminal->readInto(written);
        }
        if (hasEnded) {
            return WIFSIGNALED(state) ? 128 + WTERMSIG(state) : WEXITSTATUS(state);
        }
        if (Clock::now() > deadline) {
            ::kill(child, SIGKILL);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

}  // namespace

ProcessResult run(std::vector<std::string> const& command, Surroundings const& surroundings) {
    TempDir const folder;
    std::optional<Terminal> terminal;
    FileActions actions;
    actions.open(STDIN_FILENO, "/dev/null", O_RDONLY);
    directOutput(actions, surroundings.output, folder.file("out"));
    if (surroundings.terminalColumns >= 0) {
        terminal.emplace(surroundings.terminalColumns);
        actions.duplicate(terminal->farEnd(), STDERR_FILENO);
    } else {
        actions.open(STDERR_FILENO, folder.file("err"), O_WRONLY | O_CREAT);
    }

    auto arguments = command;
    auto environment = environmentWith(surroundings.environment);
    pid_t child = 0;
    errno = posix_spawn(&child, command.front().c_str(), actions.get(), nullptr,
                        asArguments(arguments).data(), asArguments(environment).data());
    require(errno == 0, command.front().c_str());
    ProcessResult result;
    result.status = waitFor(child, terminal, result.err);
    result.out = readFile(folder.file("out"));
    result.err += readFile(folder.file("err"));
    return result;
}

ProcessResult run(std::vector<std::string> const& command, ExtraEnvironment const& extra) {
    return run(command, Surroundings{.environment = extra});
}

}  // namespace TalTest
