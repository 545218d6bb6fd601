// The companion program's command line. Each subcommand has a source of its own: StreamsCommand,
// PacketsCommand, ShowCommand, JudgeCommand; HelpCommands has the rest.

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Parser/Version.hpp>
#include <algorithm>
#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "tools/commands/HelpCommands.hpp"
#include "tools/commands/JudgeCommand.hpp"
#include "tools/commands/PacketsCommand.hpp"
#include "tools/commands/ShowCommand.hpp"
#include "tools/commands/StreamsCommand.hpp"
#include "tools/help/HelpFooter.hpp"
#include "tools/options/Arguments.hpp"
#include "tools/options/CommandDefinition.hpp"
#include "tools/options/ExitStatus.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/Complain.hpp"
#include "tools/output/Output.hpp"
#include "tools/output/TextEscape.hpp"

namespace {

using TalIec61850Tools::Action;
using TalIec61850Tools::argumentsFor;
using TalIec61850Tools::complain;
using TalIec61850Tools::escapeText;
using TalIec61850Tools::ExitStatus;
using TalIec61850Tools::Output;
using TalIec61850Tools::OutputError;
using TalIec61850Tools::ProgramDefinition;
using TalIec61850Tools::UsageError;

/// The number of a closed standard stream would be given to the next file that is opened, and
/// messages and rows would be written into that file. Each is replaced by one that fails.
void occupyStandardStreams() {
    for (int const number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(number, F_GETFD) < 0) {
            static_cast<void>(::open("/dev/null", number == STDIN_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
}

/// Help and version are "errors" of parsing too, those with status 0.
ExitStatus report(CLI::App const& program, CLI::ParseError const& error) {
    if (error.get_exit_code() == 0) {
        std::ostringstream text;
        program.exit(error, text, text);
        Output output;
        output.write(text.str());
        output.finish();
        return ExitStatus::success;
    }
    std::string message;
    for (CLI::App const* command : program.get_subcommands()) {
        message += command->get_name() + ": ";
    }
    complain(escapeText(message + error.what()));
    return ExitStatus::usageError;
}

ExitStatus runProgram(int argc, char** argv) {
    CLI::App program("Looks into captures of IEC 61850 GOOSE and Sampled Values traffic.",
                     "tal-iec61850");
    program.set_version_flag("--version", "tal-iec61850 " TALIEC61850PARSER_VERSION,
                             "Print the version and exit");
    program.footer(
        "Each command has a --help of its own.\n\nExample:\n  tal-iec61850 streams capture.pcap");
    program.require_subcommand(0, 1);  // so a file may be called like another subcommand
    Action chosen;
    ProgramDefinition definition{.parser = program, .commands = {}};
    addStreamsCommand(definition, chosen);
    addPacketsCommand(definition, chosen);
    addShowCommand(definition, chosen);
    addJudgeCommand(definition, chosen);
    addHelpCommands(definition, chosen);
    addHelpFooters(definition);
    try {
        program.parse(argumentsFor(program, {argv + std::min(argc, 1), argv + argc}));
    } catch (CLI::ParseError const& error) {
        return report(program, error);
    }
    if (!chosen) {
        complain("no command given, see tal-iec61850 --help");
        return ExitStatus::usageError;
    }
    return chosen();
}

}  // namespace

int main(int argc, char** argv) {
    occupyStandardStreams();
    ExitStatus status = ExitStatus::failure;
    try {
        status = runProgram(argc, argv);
    } catch (OutputError const& error) {
        complain("cannot write " + error.target() + ": " + error.code().message());
    } catch (UsageError const& error) {
        complain(error.what());
        status = ExitStatus::usageError;
    } catch (std::bad_alloc const&) {
        complain("not enough memory");
    } catch (std::exception const& error) {
        complain(escapeText(error.what()));
    }
    return static_cast<int>(status);
}
