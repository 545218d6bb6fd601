#include "tools/commands/HelpCommands.hpp"

#include <CLI/CLI.hpp>
#include <TalIec61850Parser/Version.hpp>
#include <memory>
#include <string>

#include "tools/help/Completions.hpp"
#include "tools/help/ManualPage.hpp"
#include "tools/output/Output.hpp"

namespace TalIec61850Tools {

namespace {

ExitStatus print(std::string const& text) {
    Output output;
    output.write(text);
    output.finish();
    return ExitStatus::success;
}

std::string completionFor(std::string const& shell, ProgramDescription const& program) {
    if (shell == "bash") {
        return bashCompletion(program);
    }
    return shell == "zsh" ? zshCompletion(program) : fishCompletion(program);
}

}  // namespace

void addHelpCommands(ProgramDefinition& program, Action& chosen) {
    auto const shell = std::make_shared<std::string>();
    CommandDefinition& completion = addCommand(
        program, "completion", "Print a script that has a shell complete command lines.");
    CLI::Option& name = *completion.parser->add_option("SHELL", *shell, "bash, zsh or fish");
    name.required()->option_text(" ");
    allowOnly(completion, name, {"bash", "zsh", "fish"});
    completion.examples = {"source <(tal-iec61850 completion bash)"};
    completion.parser->callback([&program, &chosen, shell] {
        chosen = [&program, shell] { return print(completionFor(*shell, describe(program))); };
    });

    CommandDefinition& manual = addCommand(program, "manual", "Print the manual page.");
    manual.examples = {"tal-iec61850 manual | man -l -"};
    manual.parser->callback([&program, &chosen] {
        chosen = [&program] {
            return print(manualPage(describe(program), TALIEC61850PARSER_VERSION));
        };
    });
}

}  // namespace TalIec61850Tools
