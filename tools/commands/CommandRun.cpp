#include "tools/commands/CommandRun.hpp"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <system_error>
#include <utility>

#include "tools/options/UsageError.hpp"
#include "tools/output/Complain.hpp"
#include "tools/output/Style.hpp"
#include "tools/output/Terminal.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/DiagnosticText.hpp"

namespace TalIec61850Tools {

namespace {

/// Files that were given to be read, captures or not, are not overwritten.
void refuseToOverwrite(std::string const& path, std::set<FileIdentity> const& files) {
    struct stat status {};
    bool const isFile = ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    if (isFile && files.contains({.device = status.st_dev, .inode = status.st_ino})) {
        throw UsageError(
            fmt::format("the output {} is one of the files to be read", escapeText(path)));
    }
}

std::uint64_t totalSize(std::vector<CaptureSource> const& captures) {
    std::uint64_t total = 0;
    for (auto const& capture : captures) {
        total += capture.size;
    }
    return total;
}

}  // namespace

CommandRun::CommandRun(CommonOptions const& options, FoundCaptures found, bool takesCaptures)
    : options_(options), found_(std::move(found)), takesCaptures_(takesCaptures) {
    refuseToOverwrite(options_.outputFile);
    output_.emplace(options_.outputFile);
    for (auto const& fault : found_.faults) {
        complain(fault);
        isComplete_ = false;
    }
}

void CommandRun::refuseToOverwrite(std::string const& path) const {
    TalIec61850Tools::refuseToOverwrite(path, found_.files);
}

std::optional<std::size_t> CommandRun::captureCalled(std::string const& argument) const {
    auto const found = found_.numbers.find(argument);
    return found == found_.numbers.end() ? std::nullopt : std::optional(found->second);
}

Descriptions CommandRun::describe(std::vector<std::string> const& arguments,
                                  DescribeOptions const& how) {
    Descriptions descriptions = readDescriptions(arguments);
    found_.files.insert(descriptions.files.begin(), descriptions.files.end());
    refuseToOverwrite(options_.outputFile);
    for (auto const& fault : descriptions.faults) {
        complainAbout(fault);
    }
    if (how.notesDiagnostics) {
        for (auto const& text : diagnosticTexts(descriptions.station)) {
            note(text);
        }
    }
    lacksDescription_ = lacksDescription_ || (how.isNeeded && !descriptions.isAny);
    return descriptions;
}

ProgressBar CommandRun::progressBar() const {
    return {totalSize(captures()), !options_.quiet && isErrorTerminal()};
}

ProgressBar CommandRun::writingBar(std::uint64_t packets) const {
    return {packets, isWritingShown(), ProgressUnit::packets};
}

bool CommandRun::isWritingShown() const {
    return !options_.quiet && isErrorTerminal() && !output_->isTerminal();
}

void CommandRun::note(std::string const& text) const {
    if (!options_.quiet) {
        complain(text);
    }
}

void CommandRun::complainOf(std::string const& captureName, std::string const& fault) {
    complainAbout(fmt::format("{}: {}", escapeText(captureName), fault));
}

void CommandRun::complainAbout(std::string const& text) {
    complain(text);
    isComplete_ = false;
}

void CommandRun::flush() { output_->flush(); }

TextSink CommandRun::sink() {
    return [this](std::string_view text) { output_->write(text); };
}

bool CommandRun::inColour() const { return wantsColour(options_.colour, output_->isTerminal()); }

TableStyle CommandRun::tableStyle() const {
    TableStyle style{.inColour = inColour(), .room = {}, .namesOthers = !options_.quiet};
    if (output_->isTerminal() && !options_.wide) {
        style.room = TableRoom{.columns = terminalColumns(STDOUT_FILENO), .ellipsis = ellipsis()};
    }
    return style;
}

TextForm CommandRun::textForm() const {
    constexpr int kNoTerminal = -1;
    constexpr std::size_t kMostColumns = 1000;
    std::size_t const columns =
        terminalColumns(output_->isTerminal() ? STDOUT_FILENO : kNoTerminal);
    return {.columns = std::clamp(columns, TextForm::kLeastColumns, kMostColumns),
            .isUtf8 = isUtf8Locale(),
            .inColour = inColour()};
}

void CommandRun::writeSummary(std::string const& line) {
    if (options_.format == Format::table && !options_.quiet) {
        auto const room = tableStyle().room;
        output_->write("\n" + (room ? wrapText(line, room->columns) : line) + "\n");
    }
}

ExitStatus CommandRun::finish() {
    bool const isNothingRead = lacksDescription_ || (takesCaptures_ && captures().empty());
    if (isNothingRead && output_->isFile()) {
        complain(fmt::format("{} is not written: nothing could be read",
                             escapeText(options_.outputFile)));
        return ExitStatus::failure;
    }
    output_->finish();
    return isComplete_ ? ExitStatus::success : ExitStatus::failure;
}

}  // namespace TalIec61850Tools
