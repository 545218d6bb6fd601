// The companion program and the shared object's tool, where what they print is not taken: they
// come to an end, and the companion says so if there is somebody to say it to.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "faults/FaultTraffic.hpp"
#include "support/Process.hpp"
#include "support/TempFile.hpp"

namespace TalTest::OutputFaultsTest {
namespace {

using Command = std::vector<std::string>;

constexpr int kKilledByPipe = 128 + SIGPIPE;

/// The writing end of a pipe that nobody reads. While it lives, SIGPIPE ends processes.
class UnreadPipe {
public:
    UnreadPipe() : previous_(std::signal(SIGPIPE, SIG_DFL)) {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0)
            throw std::system_error(errno, std::generic_category(), "pipe");
        ::close(ends[0]);
        writingEnd_ = ends[1];
    }
    UnreadPipe(UnreadPipe const&) = delete;
    UnreadPipe& operator=(UnreadPipe const&) = delete;
    ~UnreadPipe() {
        ::close(writingEnd_);
        std::signal(SIGPIPE, previous_);
    }

    /// A shell's words that make it the standard output.
    [[nodiscard]] std::string asOutput() const { return ">&" + std::to_string(writingEnd_); }

private:
    void (*previous_)(int);
    int writingEnd_ = -1;
};

/// Runs a command with the redirections of a shell, and with a minute of processor time.
/// @param before  what the shell does first
ProcessResult runRedirected(Command const& command, std::string const& redirections,
                            std::string const& before = "") {
    Command shell = {"/bin/sh", "-c", "ulimit -t 60; " + before + " exec \"$@\" " + redirections,
                     "sh"};
    shell.insert(shell.end(), command.begin(), command.end());
    return run(shell);
}

constexpr auto kIgnorePipe = "trap '' PIPE;";

std::string complaint(std::string const& reason) {
    return "tal-iec61850: cannot write standard output: " + reason + "\n";
}

/// More rows than any buffer holds.
Bytes manyStreams() { return svCapture(1, 2000); }

std::vector<Command> companionCommands(std::string const& capture) {
    std::vector<Command> commands;
    for (auto const* const format : {"table", "csv", "json"})
        commands.push_back({TAL_COMPANION_PATH, "streams", "-f", format, capture});
    return commands;
}

/// What the companion does with each of its formats, for few rows and for many, and with its help.
template <typename Expect>
void withEachCommand(Expect const& expect) {
    TempFile const few(mixedCapture());
    TempFile const many(manyStreams());
    std::vector<Command> commands = companionCommands(few.path());
    for (Command const& command : companionCommands(many.path())) commands.push_back(command);
    commands.push_back({TAL_COMPANION_PATH, "--help"});
    for (Command const& command : commands) {
        SCOPED_TRACE(testing::PrintToString(command));
        expect(command);
    }
}

void expectEnd(ProcessResult const& result, int status, std::string_view errors) {
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.err, errors);
}

TEST(CompanionOutput, IntoAPipeThatNobodyReadsEndsItQuietly) {
    UnreadPipe const pipe;
    withEachCommand([&](Command const& command) {
        expectEnd(runRedirected(command, pipe.asOutput()), kKilledByPipe, "");
    });
}

TEST(CompanionOutput, IntoAPipeThatNobodyReadsIsReportedWhereTheSignalIsIgnored) {
    UnreadPipe const pipe;
    withEachCommand([&](Command const& command) {
        expectEnd(runRedirected(command, pipe.asOutput(), kIgnorePipe), 2,
                  complaint("Broken pipe"));
    });
}

TEST(CompanionOutput, IsCutQuietlyByAReaderWhoHasSeenEnough) {
    UnreadPipe const pipe;  // for the signal
    TempFile const many(manyStreams());
    for (Command const& command : companionCommands(many.path())) {
        Command shell = {"/bin/sh", "-c", "ulimit -t 60; \"$@\" | head -n 1", "sh"};
        shell.insert(shell.end(), command.begin(), command.end());
        ProcessResult const result = run(shell);
        expectEnd(result, 0, "");
        EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
    }
}

TEST(CompanionOutput, ThatIsClosedIsReported) {
    withEachCommand([](Command const& command) {
        expectEnd(runRedirected(command, ">&-"), 2, complaint("Bad file descriptor"));
    });
}

TEST(CompanionOutput, ThatDoesNotFitIsReported) {
    withEachCommand([](Command const& command) {
        expectEnd(runRedirected(command, ">/dev/full"), 2, complaint("No space left on device"));
    });
}

TEST(CompanionOutput, ThatIsLostGivesItsStatusWhereNothingCanBeSaid) {
    UnreadPipe const pipe;
    withEachCommand([&](Command const& command) {
        for (std::string const& output : {std::string(">&-"), std::string(">/dev/full")})
            for (auto const* const errors : {" 2>&-", " 2>/dev/full"})
                expectEnd(runRedirected(command, output + errors), 2, "");
        expectEnd(runRedirected(command, pipe.asOutput() + " 2>&1", kIgnorePipe), 2, "");
    });
}

TEST(CompanionOutput, IsWholeWhereErrorsCannotBeTold) {
    UnreadPipe const pipe;
    TempFile const few(mixedCapture());
    for (Command command : companionCommands(few.path())) {
        std::string const whole = run(command).out;
        EXPECT_NE(whole, "");
        for (bool const isOneBad : {false, true}) {
            if (isOneBad) command.insert(command.begin() + 4, "/nonexistent/a.pcap");
            for (std::string const& errors :
                 {std::string("2>&-"), std::string("2>/dev/full"), "2" + pipe.asOutput()}) {
                ProcessResult const result = runRedirected(command, errors, kIgnorePipe);
                expectEnd(result, isOneBad ? 2 : 0, "");
                EXPECT_EQ(result.out, whole) << errors;
            }
        }
    }
}

/// Runs the shared object with a status file whose figure is last, so that it prints all.
ProcessResult runTool(std::string const& capture, std::string const& redirections,
                      std::string const& before = "") {
    TempFile const status(text("VmRSS: 2048\n"), "status");
    return runRedirected(
        {"/usr/bin/env", "LD_PRELOAD=" TAL_STATUS_SHIM, "TAL_STATUS_FILE=" + status.path(),
         "ASAN_OPTIONS=verify_asan_link_order=0", TAL_SHARED_OBJECT, capture},
        redirections, before);
}

TEST(ToolOutput, IntoAPipeThatNobodyReadsEndsIt) {
    UnreadPipe const pipe;
    for (Bytes const& capture : {mixedCapture(), manyStreams()}) {
        TempFile const file(capture);
        expectEnd(runTool(file.path(), pipe.asOutput()), kKilledByPipe, "");
        expectEnd(runTool(file.path(), pipe.asOutput(), kIgnorePipe), 0, "");
    }
}

TEST(ToolOutput, ThatIsClosedOrDoesNotFitLetsItComeToItsEnd) {
    for (Bytes const& capture : {mixedCapture(), manyStreams()}) {
        TempFile const file(capture);
        for (std::string const output : {">&-", ">/dev/full", ">&- 2>&-", ">/dev/full 2>&1"})
            expectEnd(runTool(file.path(), output), 0, "");
    }
}

TEST(ToolOutput, IsWholeWhereErrorsCannotBeTold) {
    for (std::string const errors : {"2>&-", "2>/dev/full"}) {
        ProcessResult const result = runTool("/nonexistent/a.pcap", errors);
        expectEnd(result, 0, "");
        EXPECT_TRUE(result.out.ends_with(" seconds\nmem usage: 2 MB\n\n")) << result.out;
        TempFile const file(mixedCapture());
        EXPECT_TRUE(runTool(file.path(), errors).out.ends_with(" cnt: 10\n"));
    }
}

}  // namespace
}  // namespace TalTest::OutputFaultsTest
