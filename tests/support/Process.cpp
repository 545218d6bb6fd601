#include "support/Process.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <optional>
#include <utility>

#include "support/ProcessEnds.hpp"
#include "support/TempFile.hpp"

namespace TalTest {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::minutes kPatience(5);

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

/// The standard descriptors of one program, and what the test has at their other ends.
class Ends {
public:
    Ends(Surroundings const& surroundings, TempDir const& folder)
        : outPath_(folder.file("out")),
          errPath_(folder.file("err")),
          signal_(surroundings.signalAtFirstError) {
        directInput(surroundings);
        directOutput(surroundings.output, surroundings.outputColumns);
        directErrors(surroundings.terminalColumns);
        if (!surroundings.workingFolder.empty()) {
            actions.changeFolder(surroundings.workingFolder);
        }
    }

    /// The child has its ends now.
    void started() {
        if (errors_) {
            errors_->writing.close();
        }
    }

    /// What to wait for.
    [[nodiscard]] std::vector<pollfd> awaited() const {
        std::vector<pollfd> all;
        if (input_) {
            all.push_back({.fd = input_->writingEnd(), .events = POLLOUT, .revents = 0});
        }
        for (auto const* terminal : {&outTerminal_, &errTerminal_}) {
            if (*terminal) {
                all.push_back({.fd = (*terminal)->nearEnd(), .events = POLLIN, .revents = 0});
            }
        }
        if (errors_) {
            all.push_back({.fd = errors_->reading.number(), .events = POLLIN, .revents = 0});
        }
        return all;
    }

    /// Gives and takes what the child can take and has given.
    void serve(pid_t child, ProcessResult& result) {
        if (input_) {
            input_->feed();
        }
        if (outTerminal_) {
            outTerminal_->readInto(result.out);
        }
        if (errTerminal_) {
            errTerminal_->readInto(result.err);
        }
        if (errors_) {
            takeErrors(child, result.err);
        }
    }

    /// Takes what is left once the child has ended.
    void finish(ProcessResult& result) const {
        result.out += readFile(outPath_);
        result.err += readFile(errPath_);
    }

    FileActions actions;

private:
    void directInput(Surroundings const& surroundings) {
        if (surroundings.inputPiped) {
            input_.emplace(*surroundings.inputPiped);
            actions.duplicate(input_->readingEnd(), STDIN_FILENO);
        } else {
            actions.open(STDIN_FILENO, surroundings.inputFile, O_RDONLY);
        }
    }

    void directOutput(StandardOutputIs output, int columns) {
        if (output == StandardOutputIs::closed) {
            actions.close(STDOUT_FILENO);
        } else if (output == StandardOutputIs::terminal) {
            outTerminal_.emplace(columns);
            actions.duplicate(outTerminal_->farEnd(), STDOUT_FILENO);
        } else {
            bool const isFull = output == StandardOutputIs::full;
            actions.open(STDOUT_FILENO, isFull ? "/dev/full" : outPath_, O_WRONLY | O_CREAT);
        }
    }

    void directErrors(int terminalColumns) {
        if (signal_ != 0) {
            errors_.emplace();
            actions.duplicate(errors_->writing.number(), STDERR_FILENO);
        } else if (terminalColumns >= 0) {
            errTerminal_.emplace(terminalColumns);
            actions.duplicate(errTerminal_->farEnd(), STDERR_FILENO);
        } else {
            actions.open(STDERR_FILENO, errPath_, O_WRONLY | O_CREAT);
        }
    }

    /// The signal is on its way before there is room for more in the pipe.
    void takeErrors(pid_t child, std::string& text) {
        if (signal_ != 0) {
            char first = 0;
            if (::read(errors_->reading.number(), &first, 1) != 1) {
                return;
            }
            text += first;
            ::kill(child, std::exchange(signal_, 0));
        }
        errors_->reading.readInto(text);
    }

    std::string outPath_;
    std::string errPath_;
    int signal_;
    std::optional<PipeFeed> input_;
    std::optional<Terminal> outTerminal_;
    std::optional<Terminal> errTerminal_;
    std::optional<Pipe> errors_;
};

/// How long to wait at once: to the end of all patience, or hardly where the end of a process
/// cannot be waited for.
int waitingTime(Clock::time_point deadline, bool isToldOfTheEnd) {
    auto const left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return isToldOfTheEnd ? static_cast<int>(std::max<std::int64_t>(left.count(), 1)) : 1;
}

/// Waits for the child, and meanwhile serves its other ends.
void waitFor(pid_t child, Ends& ends, ProcessResult& result) {
    auto const deadline = Clock::now() + kPatience;
    OwnDescriptor end;
    end.own(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
    for (;;) {
        auto awaited = ends.awaited();
        awaited.push_back({.fd = end.number(), .events = POLLIN, .revents = 0});
        ::poll(awaited.data(), awaited.size(), waitingTime(deadline, end.isOpen()));
        ends.serve(child, result);
        int state = 0;
        if (::waitpid(child, &state, WNOHANG) == child) {
            ends.serve(child, result);
            result.status = WIFSIGNALED(state) ? 128 + WTERMSIG(state) : WEXITSTATUS(state);
            return;
        }
        if (Clock::now() > deadline) {
            ::kill(child, SIGKILL);
        }
    }
}

}  // namespace

ProcessResult run(std::vector<std::string> const& command, Surroundings const& surroundings) {
    TempDir const folder;
    Ends ends(surroundings, folder);
    auto arguments = command;
    auto environment = environmentWith(surroundings.environment);
    pid_t child = 0;
    errno = posix_spawn(&child, command.front().c_str(), ends.actions.get(), nullptr,
                        asArguments(arguments).data(), asArguments(environment).data());
    require(errno == 0, command.front().c_str());
    ends.started();
    ProcessResult result;
    waitFor(child, ends, result);
    ends.finish(result);
    return result;
}

ProcessResult run(std::vector<std::string> const& command, ExtraEnvironment const& extra) {
    return run(command, Surroundings{.environment = extra});
}

}  // namespace TalTest
