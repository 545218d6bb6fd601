#include "tools/help/HelpFormatter.hpp"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <utility>

#include "tools/output/WrapText.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::size_t kLineColumns = 79;
constexpr std::size_t kNameColumns = 30;

/// A name and a text beside it; below it if the name is too long.
std::string twoColumns(std::string const& name, std::string const& text) {
    bool const fits = name.size() + 2 <= kNameColumns;
    std::string const indent(kNameColumns, ' ');
    std::string lines =
        fits ? name + std::string(kNameColumns - name.size(), ' ') : name + "\n" + indent;
    for (char const c : wrapText(text, kLineColumns - kNameColumns)) {
        lines += c == '\n' ? "\n" + indent : std::string(1, c);
    }
    return lines + "\n";
}

class HelpFormatter : public CLI::Formatter {
public:
    std::string make_option(CLI::Option const* option, bool isPositional) const override {
        return twoColumns("  " + make_option_name(option, isPositional) + make_option_opts(option),
                          make_option_desc(option));
    }

    /// One empty line between groups, of which the base class makes two.
    std::string make_help(CLI::App const* command, std::string name,
                          CLI::AppFormatMode mode) const override {
        std::string text = CLI::Formatter::make_help(command, std::move(name), mode);
        constexpr char const* kTwoEmptyLines = "\n\n\n";
        for (auto at = text.find(kTwoEmptyLines); at != std::string::npos;
             at = text.find(kTwoEmptyLines, at)) {
            text.erase(at, 1);
        }
        return text;
    }

    std::string make_subcommand(CLI::App const* command) const override {
        return twoColumns("  " + command->get_name(), command->get_description());
    }
};

}  // namespace

void fitHelp(CLI::App& program) { program.formatter(std::make_shared<HelpFormatter>()); }

}  // namespace TalIec61850Tools
