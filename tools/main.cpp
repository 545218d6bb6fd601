// The companion program's command line. Each subcommand has a source of its own: StreamsCommand,
// PacketsCommand, ShowCommand, EventsCommand, SamplesCommand, ComtradeCommand, RedundancyCommand,
// CheckCommand, ReportCommand, PlotCommand, CapturesCommand; SclCommands has the group `scl`,
// LibraryCommands the group `library`, HelpCommands the rest.

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Parser/Version.hpp>
#include <algorithm>
#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "tools/commands/CapturesCommand.hpp"
#include "tools/commands/CheckCommand.hpp"
#include "tools/commands/ComtradeCommand.hpp"
#include "tools/commands/EventsCommand.hpp"
#include "tools/commands/HelpCommands.hpp"
#include "tools/commands/LibraryCommands.hpp"
#include "tools/commands/PacketsCommand.hpp"
#include "tools/commands/PlotCommand.hpp"
#include "tools/commands/RedundancyCommand.hpp"
#include "tools/commands/ReportCommand.hpp"
#include "tools/commands/SamplesCommand.hpp"
#include "tools/commands/SclCommands.hpp"
#include "tools/commands/ShowCommand.hpp"
#include "tools/commands/StreamsCommand.hpp"
#include "tools/help/HelpFooter.hpp"
#include "tools/help/HelpFormatter.hpp"
#include "tools/options/Arguments.hpp"
#include "tools/options/CommandDefinition.hpp"
#include "tools/options/ExitStatus.hpp"
#include "tools/options/IntendedCommand.hpp"
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
using TalIec61850Tools::fitHelp;
using TalIec61850Tools::intendedCommand;
using TalIec61850Tools::messageStart;
using TalIec61850Tools::Output;
using TalIec61850Tools::OutputError;
using TalIec61850Tools::ProgramDefinition;
using TalIec61850Tools::refuseUnknown;
using TalIec61850Tools::seeHelp;
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

/// The command that the parser has reached: a group's own, its group, or the program.
CLI::App const& parsedCommand(CLI::App const& program) {
    CLI::App const* command = &program;
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
    }
    return *command;
}

/// The sentence for what the parser refuses; its own are for those who write parsers.
std::string refusalText(CLI::App const& command, CLI::ParseError const& error) {
    std::string text = error.what();
    if (dynamic_cast<CLI::ExtrasError const*>(&error) != nullptr) {
        return "there is no use for " + command.remaining().front();
    }
    if (dynamic_cast<CLI::ArgumentMismatch const*>(&error) != nullptr) {
        return text.substr(0, text.find(':')) + ": a value is missing";
    }
    return text;
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
    CLI::App const& command = parsedCommand(program);
    complain(escapeText(messageStart(command) + refusalText(command, error)));
    return ExitStatus::usageError;
}

ExitStatus runProgram(int argc, char** argv) {
    CLI::App program("Looks into captures of IEC 61850 GOOSE and Sampled Values traffic.",
                     "tal-iec61850");
    fitHelp(program);
    program.set_version_flag("-V,--version", "tal-iec61850 " TALIEC61850PARSER_VERSION,
                             "Print the version and exit");
    program.footer(
        "Each command has a --help of its own. A file alone lists its streams.\n\n"
        "Example:\n  tal-iec61850 streams capture.pcap");
    program.require_subcommand(0, 1);  // so a file may be called like another subcommand
    Action chosen;
    ProgramDefinition definition{.parser = program, .commands = {}};
    addStreamsCommand(definition, chosen);
    addPacketsCommand(definition, chosen);
    addShowCommand(definition, chosen);
    addEventsCommand(definition, chosen);
    addSamplesCommand(definition, chosen);
    addComtradeCommand(definition, chosen);
    addRedundancyCommand(definition, chosen);
    addCheckCommand(definition, chosen);
    addSclCommands(definition, chosen);
    addReportCommand(definition, chosen);
    addPlotCommand(definition, chosen);
    addCapturesCommand(definition, chosen);
    addHelpCommands(definition, chosen);
    addLibraryCommands(definition, chosen);
    addHelpFooters(definition);
    try {
        auto const arguments = intendedCommand(program, {argv + std::min(argc, 1), argv + argc});
        refuseUnknown(program, arguments);
        program.parse(argumentsFor(program, arguments));
    } catch (CLI::ParseError const& error) {
        return report(program, error);
    }
    if (!chosen) {
        complain("no command given, " + seeHelp(parsedCommand(program)));
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
