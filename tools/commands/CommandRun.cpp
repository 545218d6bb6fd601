#include "tools/commands/CommandRun.hpp"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <TalIec61850Analysis/file/CaptureSurvey.hpp>
#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <algorithm>
#include <atomic>
#include <functional>
#include <future>
#include <set>
#include <system_error>

#include "tools/commands/NumberCaptures.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/Complain.hpp"
#include "tools/output/Style.hpp"
#include "tools/output/Terminal.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/CaptureText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureFormat;
using TalIec61850Analysis::CaptureSurvey;
using TalIec61850Parser::Filter;
using TalIec61850Parser::PcapParser;

namespace {

constexpr char const* kNextGeneration =
    "next-generation capture: convert it first, for example with editcap -F pcap";

/// Files that were given to be read, captures or not, are not overwritten.
void refuseToOverwrite(std::string const& path, std::set<FileIdentity> const& files) {
    struct stat status {};
    bool const isFile = ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    if (isFile && files.contains({.device = status.st_dev, .inode = status.st_ino})) {
        throw UsageError(
            fmt::format("--output: {} is one of the files to be read", escapeText(path)));
    }
}

std::uint64_t totalSize(std::vector<CaptureSource> const& captures) {
    std::uint64_t total = 0;
    for (auto const& capture : captures) {
        total += capture.size;
    }
    return total;
}

/// Adds one file to the store. Its record headers are walked at the same time, for damage that the
/// library does not report: the file is in the page cache then.
CaptureSurvey indexCapture(CaptureSource const& capture, Filter const& filter,
                           TalIec61850Parser::Db& db, ProgressBar& bar) {
    auto survey = std::async(TalIec61850Analysis::surveyCapture, capture.path);
    std::atomic<bool> const neverStop = false;
    // Indexing is faster without progress calls.
    std::function<void(double)> progress;
    bar.startFile(capture.name, capture.size);
    if (bar.isShown()) {
        progress = [&](double fraction) { bar.show(fraction); };
    }
    PcapParser::parseFile(capture.path, db, filter, neverStop, progress);
    return survey.get();
}

}  // namespace

CommandRun::CommandRun(CommonOptions const& options)
    : options_(options), found_(findCaptures(options.files)) {
    refuseToOverwrite(options_.outputFile, found_.files);
    output_.emplace(options_.outputFile);
    for (auto const& fault : found_.faults) {
        complain(fault);
        isComplete_ = false;
    }
}

std::optional<std::size_t> CommandRun::captureCalled(std::string const& argument) const {
    auto const found = found_.numbers.find(argument);
    return found == found_.numbers.end() ? std::nullopt : std::optional(found->second);
}

CaptureIndex CommandRun::index(Filter const& filter) {
    CaptureIndex index;
    index.numbers = numberCaptures(captures());
    ProgressBar bar = progressBar();
    for (auto const& capture : captures()) {
        if (capture.format == CaptureFormat::nextGeneration) {
            if (!isDamageTold_) {
                bar.erase();
                complainOf(capture.name, kNextGeneration);
            }
            continue;
        }
        CaptureSurvey const survey = indexCapture(capture, filter, index.db, bar);
        if (survey.start) {
            index.begin = std::min(index.begin.value_or(*survey.start), *survey.start);
        }
        index.end = std::max(index.end, survey.latest);
        if (auto const fault = faultText(survey); fault && !isDamageTold_) {
            bar.erase();
            complainOf(capture.name, *fault);
        }
    }
    isDamageTold_ = true;
    return index;
}

ProgressBar CommandRun::progressBar() const {
    return {totalSize(captures()), !options_.quiet && isErrorTerminal()};
}

ProgressBar CommandRun::writingBar(std::uint64_t packets) const {
    bool const isShown = !options_.quiet && isErrorTerminal() && !output_->isTerminal();
    return {packets, isShown, ProgressUnit::packets};
}

void CommandRun::note(std::string const& text) const {
    if (!options_.quiet) {
        complain(text);
    }
}

void CommandRun::complainOf(std::string const& captureName, std::string const& fault) {
    complain(fmt::format("{}: {}", escapeText(captureName), fault));
    isComplete_ = false;
}

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

void CommandRun::writeSummary(std::string const& line) {
    if (options_.format == Format::table && !options_.quiet) {
        auto const room = tableStyle().room;
        output_->write("\n" + (room ? wrapText(line, room->columns) : line) + "\n");
    }
}

ExitStatus CommandRun::finish() {
    if (captures().empty() && output_->isFile()) {
        complain(fmt::format("{} is not written: nothing could be read",
                             escapeText(options_.outputFile)));
        return ExitStatus::failure;
    }
    output_->finish();
    return isComplete_ ? ExitStatus::success : ExitStatus::failure;
}

}  // namespace TalIec61850Tools
