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

void addHelpCommands(CLI::App& program, Action& chosen) {
    auto const shell = std::make_shared<std::string>();
    CLI::App& completion = *program.add_subcommand(
        "completion", "Print a script that has a shell complete command lines.");
    completion.add_option("SHELL", *shell, "bash, zsh or fish")
        ->required()
        ->check(CLI::IsMember({"bash", "zsh", "fish"}))
        ->option_text(" ");
    completion.footer("Example:\n  source <(tal-iec61850 completion bash)");
    completion.callback([&program, &chosen, shell] {
        chosen = [&program, shell] { return print(completionFor(*shell, describe(program))); };
    });

    CLI::App& manual = *program.add_subcommand("manual", "Print the manual page.");
    manual.footer("Example:\n  tal-iec61850 manual | man -l -");
    manual.callback([&program, &chosen] {
        chosen = [&program] {
            return print(manualPage(describe(program), TALIEC61850PARSER_VERSION));
        };
    });
}

}  // namespace TalIec61850Tools
