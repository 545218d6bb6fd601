#include "tools/help/ManualPage.hpp"

#include <fmt/format.h>

#include "tools/options/ExitStatus.hpp"
#include "tools/output/WrapText.hpp"

namespace TalIec61850Tools {

namespace {

constexpr char const* kOutput = R"(.SH OUTPUT
.I json
writes one object per line,
.I csv
one line per row below a line of names. Table and csv show control characters in names as \en,
\ex1b and the like, a backslash as \e\e.
)";

constexpr char const* kEnvironment = R"(.SH ENVIRONMENT
.TP
.B NO_COLOR
When set and not empty, forbids bold headings, unless
.B \-\-color always
is given.
.TP
.B TERM
A terminal that is
.I dumb
gets no bold headings either.
.TP
.B TMPDIR
Where a pipe is copied to, and what a compressed capture unpacks to; the copy has no name, is gone
with the program, and is as large as the disk has room for.
.TP
.B LC_ALL\fR, \fBLC_CTYPE\fR, \fBLANG
Whether tables on a terminal are cut with one character (UTF\-8) or with dots.
)";

/// A text in which nothing is read as a request or as an escape.
std::string escaped(std::string_view text) {
    std::string result;
    bool isLineStart = true;
    for (char const c : text) {
        if (isLineStart && (c == '.' || c == '\'')) {
            result += "\\&";
        }
        isLineStart = c == '\n';
        switch (c) {
            case '\\':
                result += "\\e";
                break;
            case '-':
                result += "\\-";
                break;
            case '\'':
                result += "\\(aq";
                break;
            case '`':
                result += "\\(ga";
                break;
            case '^':
                result += "\\(ha";
                break;
            case '~':
                result += "\\(ti";
                break;
            default:
                result += c;
        }
    }
    return result;
}

std::string optionParagraph(OptionDescription const& option) {
    std::string names = option.shortName.empty() ? std::string() : "-" + option.shortName + ", ";
    names += "--" + option.longName;
    std::string const value =
        option.valueName.empty() ? std::string() : " \\fI" + escaped(option.valueName) + "\\fR";
    return fmt::format(".TP\n\\fB{}\\fR{}\n{}\n", escaped(names), value, escaped(option.text));
}

std::string optionParagraphs(std::vector<OptionDescription> const& options) {
    std::string text;
    for (auto const& option : options) {
        text += optionParagraph(option);
    }
    return text;
}

/// Lines that are not wrapped.
std::string verbatim(std::string_view lines) {
    return fmt::format(".PP\n.nf\n{}\n.fi\n", escaped(lines));
}

std::string exitStatusSection() {
    std::string section = ".SH EXIT STATUS\n";
    for (ExitStatusText const& status : exitStatusTexts()) {
        section += fmt::format(".TP\n.B {}\n{}\n", static_cast<int>(status.status),
                               escaped(wrapText(status.full, kHelpColumns)));
    }
    return section;
}

std::string commandSection(CommandDescription const& command) {
    std::string const argument = command.argumentName.empty()
                                     ? std::string()
                                     : fmt::format(" \\fI{}\\fR", escaped(command.argumentName));
    std::string text =
        fmt::format(".SS \"{}\"\n{}\n", escaped(command.fullName()), escaped(command.text));
    if (!argument.empty()) {
        text += fmt::format(".TP\n{}\n{}\n", argument.substr(1), escaped(command.argumentText));
    }
    text += optionParagraphs(command.options);
    return command.notes.empty() ? text : text + verbatim(command.notes);
}

}  // namespace

std::string manualPage(ProgramDescription const& program, std::string_view version) {
    std::string page = fmt::format(".TH TAL\\-IEC61850 1 \"\" \"{} {}\"\n", escaped(program.name),
                                   escaped(version));
    page += fmt::format(".SH NAME\n{} \\- {}\n", escaped(program.name), escaped(program.text));
    page +=
        fmt::format(".SH SYNOPSIS\n.B {}\n\\fICOMMAND\\fR [\\fIOPTION\\fR...] [\\fIFILE\\fR...]\n",
                    escaped(program.name));
    page += ".SH OPTIONS\n" + optionParagraphs(program.options);
    page += ".SH COMMANDS\n";
    std::string examples;
    for (auto const& command : program.commands) {
        page += commandSection(command);
        for (auto const& example : command.examples) {
            examples += (examples.empty() ? "" : "\n") + example;
        }
    }
    page += kOutput + exitStatusSection() + kEnvironment;
    return page + ".SH EXAMPLES\n" + verbatim(examples);
}

}  // namespace TalIec61850Tools
