#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/input/CaptureFinder.hpp"
#include "tools/input/ReadDescriptions.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/options/ExitStatus.hpp"
#include "tools/output/Output.hpp"
#include "tools/output/ProgressBar.hpp"
#include "tools/output/RowWriter.hpp"
#include "tools/output/TextSink.hpp"
#include "tools/terminal/TextForm.hpp"

namespace TalIec61850Tools {

/// How descriptions are read.
struct DescribeOptions {
    /// Whether nothing can be done without one.
    bool isNeeded = false;
    /// Whether what is wrong with them is noted.
    bool notesDiagnostics = true;
};

/// The part that all commands that read captures have in common: finds the captures, reports those
/// that cannot be used (the exit status shows it), shows progress, and opens and finishes the
/// output.
class CommandRun {
public:
    /// Follows the FILE arguments and opens the output.
    /// @param options  must outlive the run
    /// @throws UsageError   the output would overwrite a file that is to be read
    /// @throws OutputError  the output cannot be opened
    explicit CommandRun(CommonOptions const& options)
        : CommandRun(options, findCaptures(options.files)) {}

    /// A run that finds its captures itself, while they are written.
    [[nodiscard]] static CommandRun following(CommonOptions const& options) {
        return {options, FoundCaptures()};
    }

    /// A run whose FILE arguments are no captures: it reads descriptions alone.
    [[nodiscard]] static CommandRun withoutCaptures(CommonOptions const& options) {
        return {options, FoundCaptures(), false};
    }

    [[nodiscard]] std::vector<CaptureSource> const& captures() const { return found_.captures; }

    /// The number of the capture that a FILE argument led to; none for a folder, and if it led to
    /// no capture.
    [[nodiscard]] std::optional<std::size_t> captureCalled(std::string const& argument) const;

    /// To be asked before a file is written besides the output.
    /// @throws UsageError  it is a file that is to be read
    void refuseToOverwrite(std::string const& path) const;

    /// Reads descriptions of the station. What of them cannot be used is reported, and the exit
    /// status shows it; what else is wrong with them is noted.
    /// @throws UsageError  the output would overwrite one of them
    [[nodiscard]] Descriptions describe(std::vector<std::string> const& arguments,
                                        DescribeOptions const& how = {});

    /// A bar for the reading of all captures, shown only on a terminal.
    [[nodiscard]] ProgressBar progressBar() const;

    /// A bar for the writing of packets, shown only where they do not go to a terminal themselves.
    [[nodiscard]] ProgressBar writingBar(std::uint64_t packets) const;

    /// Whether that bar is shown.
    [[nodiscard]] bool isWritingShown() const;

    /// Whether neither progress nor notes are wanted.
    [[nodiscard]] bool isQuiet() const { return options_.quiet; }

    /// Writes a line for people to standard error, unless they want none; the exit status is as it
    /// was.
    /// @param text  safe for a terminal
    void note(std::string const& text) const;

    /// Reports a fault of a capture on standard error; the exit status shows it.
    void complainOf(std::string const& captureName, std::string const& fault);

    /// Reports a fault that names its capture already; the exit status shows it.
    /// @param text  safe for a terminal
    void complainAbout(std::string const& text);

    /// Hands over what was written so far.
    /// @throws OutputError  it cannot be written
    void flush();

    /// A writer of rows into the output.
    template <typename Row>
    [[nodiscard]] RowWriter<Row> rowWriter(RowLayout<Row> const& layout) {
        return RowWriter<Row>(options_.format, layout, sink(), tableStyle());
    }

    [[nodiscard]] TableStyle tableStyle() const;
    /// What a picture of text in the output is made for: as wide as the terminal that it goes to,
    /// else as COLUMNS says, or 80 columns.
    [[nodiscard]] TextForm textForm() const;
    [[nodiscard]] TextSink sink();
    [[nodiscard]] bool inColour() const;

    /// Writes a last line for people, in tables only.
    void writeSummary(std::string const& line);

    /// Finishes the output.
    /// @throws OutputError  it cannot be written
    [[nodiscard]] ExitStatus finish();

private:
    CommandRun(CommonOptions const& options, FoundCaptures found, bool takesCaptures = true);

    CommonOptions const& options_;
    FoundCaptures found_;
    std::optional<Output> output_;
    /// Whether nothing can be done without one.
    bool takesCaptures_;
    /// Whether a description is needed, and there is none.
    bool lacksDescription_ = false;
    bool isComplete_ = true;
};

}  // namespace TalIec61850Tools
