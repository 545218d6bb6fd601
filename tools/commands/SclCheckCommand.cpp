#include "tools/commands/SclCheckCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Scl/match/CheckStation.hpp>
#include <TalIec61850Scl/match/MatchStreams.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/DescribedBlocks.hpp"
#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/options/JobsOption.hpp"
#include "tools/options/RepeatableOption.hpp"
#include "tools/options/SclOption.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/StationCheckLayout.hpp"
#include "tools/selection/FindingNames.hpp"
#include "tools/selection/StationNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::Severity;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficStream;
using TalIec61850Scl::StationCheckOptions;
using TalIec61850Scl::StationDescription;
using TalIec61850Scl::StationResult;
using TalIec61850Scl::StationRow;
using TalIec61850Scl::StreamMatch;

namespace {

constexpr char const* kRowsGroup = "Which rows";

/// The arguments of `tal-iec61850 scl check`.
struct SclCheckOptions {
    /// Its files are the captures.
    CommonOptions common;
    /// Descriptions, or folders with some.
    std::vector<std::string> descriptions;
    ControlBlockCriteria criteria;
    /// Empty for all.
    std::vector<StationResult> results;
    /// The least that the program fails on; not set for nothing.
    std::optional<Severity> failOn = Severity::error;
};

std::string sclCheckNotes() {
    auto const fields = listFields(fieldNames(stationCheckLayout(Format::json)),
                                   {{"result", "match, missing, differs or unexpected"},
                                    {"controlBlock", "its reference on the wire, as described"},
                                    {"differences", "objects of what, expected and found"},
                                    {"position", "of the PDU, in octets"}});
    return paragraph(
               "A row for each control block that is described, in the order of the description, "
               "then for each stream that is not: match, as it is described; differs; missing, no "
               "packet of it came; unexpected, not described. A stream is that of the control "
               "block with its gocbRef or svID, else of the one with its destination and APPID. "
               "Each kind of difference is told once a row, with its first packet; a table has a "
               "line for each.") +
           "\n" +
           paragraph(
               "Compared are destination, APPID, VLAN and its priority, names, confRev, number and "
               "types of members, and the longest time between two messages; of SV the rate, ASDUs "
               "in a frame and the optional fields. A VLAN of 0 and none are the same, and so are "
               "no tag and a tag with a priority alone.") +
           "\n" +
           paragraph(
               "Exit status 3 tells that a row is missing or differs. For --fail-on these are "
               "errors, and unexpected is a warning. Options on streams select rows by the "
               "stream or by what is described; --ied leaves out streams that are not described.") +
           "\n" + paragraph(kContentNotes) + "\n" +
           paragraph("The fields of json and csv: " + fields + ".");
}

/// Compares captures with the description of their station.
class SclCheck {
public:
    explicit SclCheck(SclCheckOptions const& options)
        : options_(options),
          layout_(chooseColumns(stationCheckLayout(options.common.format), options.common.columns)),
          run_(options.common),
          descriptions_(run_.describe(options.descriptions, {.isNeeded = true})) {}

    ExitStatus write() {
        if (descriptions_.isAny && !run_.captures().empty()) {
            compare();
        }
        writeRows();
        run_.writeSummary(lastLine());
        ExitStatus const status = run_.finish();
        return isFailure_ ? ExitStatus::findings : status;
    }

private:
    [[nodiscard]] StationDescription const& station() const { return descriptions_.station; }

    void compare() {
        index_ = indexTraffic(run_, {}, options_.common.jobs);
        reportFaults(run_, index_);
        StationCheckOptions options{.streams = {}, .jobs = options_.common.jobs};
        if (options_.criteria.streams != PacketCriteria() || !options_.criteria.ieds.empty()) {
            options.streams = wantedStreams();
        }
        try {
            for (StationRow& row : checkStation(index_, station(), options)) {
                take(std::move(row));
            }
        } catch (std::system_error const& error) {
            run_.complainOf(nameOfAll(run_.captures()), faultText(error.code()));
            return;
        }
        if (rows_.empty() || station().controlBlocks.empty()) {
            noteNone();
        } else if (index_.streams().empty()) {
            noteNoStreams(run_, index_, {}, options_.common.jobs);
        }
    }

    /// A stream is wanted by itself, or by its control block.
    [[nodiscard]] std::vector<std::size_t> wantedStreams() const {
        auto const matches = matchStreams(index_, station());
        std::vector<std::size_t> wanted;
        for (std::size_t number = 0; number < matches.size(); ++number) {
            if (isWanted(index_.streams()[number], matches[number])) {
                wanted.push_back(number);
            }
        }
        return wanted;
    }

    [[nodiscard]] bool isWanted(TrafficStream const& stream,
                                std::optional<StreamMatch> const& match) const {
        ControlBlockCriteria const& criteria = options_.criteria;
        if (!match) {
            return criteria.ieds.empty() && isMet(stream);
        }
        auto const& block = station().controlBlocks[match->controlBlock];
        return criteria.admitIed(block.ied) && (criteria.admitDescribed(block) || isMet(stream));
    }

    [[nodiscard]] bool isMet(TrafficStream const& stream) const {
        PacketCriteria const& criteria = options_.criteria.streams;
        return criteria.admitKey(stream.key) &&
               std::any_of(stream.parts.begin(), stream.parts.end(), [&](auto const& part) {
                   return std::any_of(
                       part.changes.begin(), part.changes.end(), [&](auto const& change) {
                           return criteria.admitAttributes(index_.attributes(part, change));
                       });
               });
    }

    void take(StationRow&& row) {
        // The streams of control blocks that are not wanted were not looked for.
        bool const isOther = row.result == StationResult::missing &&
                             !options_.criteria.admit(station().controlBlocks[*row.controlBlock]);
        bool const isListed =
            options_.results.empty() || std::find(options_.results.begin(), options_.results.end(),
                                                  row.result) != options_.results.end();
        if (isOther || !isListed) {
            return;
        }
        auto const severity = severityOf(row.result);
        isFailure_ = isFailure_ || (severity && options_.failOn && *severity >= *options_.failOn);
        ++counts_.at(static_cast<std::size_t>(row.result));
        rows_.push_back(std::move(row));
    }

    void writeRows() {
        std::vector<std::string> files;
        for (auto const& capture : run_.captures()) {
            files.push_back(capture.name);
        }
        auto writer = run_.rowWriter(layout_);
        // People are told each difference on a line, unless they choose columns.
        bool const isLinePerDifference =
            options_.common.format == Format::table && options_.common.columns.empty();
        for (StationRow const& row : rows_) {
            StationCheckRow line{.row = &row,
                                 .index = &index_,
                                 .station = &station(),
                                 .files = &files,
                                 .difference = {}};
            if (!isLinePerDifference || row.differences.empty()) {
                writer.write(line);
                continue;
            }
            for (std::size_t number = 0; number < row.differences.size(); ++number) {
                line.difference = number;
                writer.write(line);
            }
        }
        writer.finish();
    }

    void noteNone() const {
        if (index_.streams().empty()) {
            noteNoStreams(run_, index_, {}, options_.common.jobs);
        } else if (options_.results.empty()) {
            noteNoBlocks(run_, station(), options_.criteria);
        }
    }

    [[nodiscard]] std::string lastLine() const {
        auto const count = [&](StationResult result) {
            return counts_.at(static_cast<std::size_t>(result));
        };
        return fmt::format("{} match, {} missing, {} differ, {} unexpected, in {}",
                           count(StationResult::match), count(StationResult::missing),
                           count(StationResult::differs), count(StationResult::unexpected),
                           plural(run_.captures().size(), "file"));
    }

    SclCheckOptions const& options_;
    RowLayout<StationCheckRow> layout_;
    CommandRun run_;
    Descriptions descriptions_;
    TrafficIndex index_;
    /// Those that are selected.
    std::vector<StationRow> rows_;
    /// By result.
    std::array<std::uint64_t, 4> counts_{};
    bool isFailure_ = false;
};

/// The first of the FILE arguments is a description, the others are captures.
SclCheckOptions withArgumentsApart(SclCheckOptions options) {
    auto& files = options.common.files;
    if (files.size() < 2) {
        throw UsageError("scl check: a description and captures are required, in this order");
    }
    options.descriptions.insert(options.descriptions.begin(), std::move(files.front()));
    files.erase(files.begin());
    return options;
}

ExitStatus runSclCheck(SclCheckOptions const& options) {
    SclCheckOptions const apart = withArgumentsApart(options);
    SclCheck check(apart);
    return check.write();
}

void addRowOptions(CommandDefinition& command, SclCheckOptions& options) {
    CLI::Option& result = addRepeatable(command, "--result", options.results, "RESULT",
                                        "Rows of that result alone; may be given several times",
                                        [](std::string const& option, std::string const& text) {
                                            auto const known = stationResultOf(text);
                                            if (!known) {
                                                refuseValue(option, text, "a result");
                                            }
                                            return *known;
                                        });
    result.group(kRowsGroup);
    allowOnly(command, result, stationResultNames());
    CLI::Option& failOn = *command.parser->add_option_function<std::string>(
        "--fail-on", [&options](std::string const& name) { options.failOn = severityOf(name); },
        "Exit status 3 where a row is at least this: error (if not said): missing or differs; "
        "warning: unexpected too; none");
    failOn.option_text("LEVEL")->group(kRowsGroup);
    allowOnly(command, failOn, {"warning", "error", "none"});
}

}  // namespace

void addSclCheckCommand(ProgramDefinition& program, CommandDefinition const& group,
                        Action& chosen) {
    auto const options = std::make_shared<SclCheckOptions>();
    CommandDefinition& command = addCommand(
        program, group, "check", "Compare captures with the description of their station.");
    addCommonOptions(command, options->common,
                     "The description of the station, or a folder with some; then captures, "
                     "compressed or not, pipes, folders, or - for standard input");
    addJobsOption(command, options->common.jobs);
    addRowOptions(command, *options);
    addSclOption(command, options->descriptions, "Another description, or a folder with some");
    addIedOption(command, options->criteria.ieds,
                 "IED that publishes; * is any text, ? any character");
    addContentOptions(command, options->criteria.streams);
    command.notes = sclCheckNotes();
    command.examples = {"tal-iec61850 scl check station.scd bay1.pcap bay2.pcap",
                        "tal-iec61850 scl check --ied 'BAY1*' -f json station.scd captures/",
                        "tal-iec61850 scl check -q --fail-on warning descriptions/ bay1.pcap"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runSclCheck(*options); }; });
}

}  // namespace TalIec61850Tools
