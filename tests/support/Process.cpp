#include "support/Process.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <memory>
#include <system_error>

#include "support/TempFile.hpp"

namespace TalTest {

namespace {

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

int waitFor(pid_t child) {
    int state = 0;
    while (::waitpid(child, &state, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(state) ? 128 + WTERMSIG(state) : WEXITSTATUS(state);
}

}  // namespace

ProcessResult run(std::vector<std::string> const& command, ExtraEnvironment const& extra) {
    TempDir const folder;
    std::string const out = folder.path() + "/out";
    std::string const err = folder.path() + "/err";
    auto arguments = command;
    auto environment = environmentWith(extra);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    std::unique_ptr<posix_spawn_file_actions_t, int (*)(posix_spawn_file_actions_t*)> const cleanup(
        &actions, posix_spawn_file_actions_destroy);
    constexpr int create = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), create, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), create, 0600);

    pid_t child = 0;
    int const failure = posix_spawn(&child, command.front().c_str(), &actions, nullptr,
                                    asArguments(arguments).data(), asArguments(environment).data());
    if (failure != 0) {
        throw std::system_error(failure, std::generic_category(), command.front());
    }
    int const status = waitFor(child);
    return {.status = status, .out = readFile(out), .err = readFile(err)};
}

}  // namespace TalTest
