#include "tools/commands/CapturesCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/IndexTraffic.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/JobsOption.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/CaptureLayout.hpp"
#include "tools/render/UtcText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureSummary;
using TalIec61850Analysis::TrafficIndex;

namespace {

constexpr char const* kCapturesNotes = R"(What the columns mean:
  PRECISION    The unit of times; of several interfaces the finest.
  LINK         What frames start with; a number of the registry of link
               types where frames of it are not looked into.
  FIRST, LAST  Earliest and latest capture time of all records, UTC.
  GOOSE, SV    Frames by their EtherType, readable or not.
  OTHER        Other frames, by protocol or EtherType. MMS is what has
               TCP port 102; an IP packet is counted once. IEEE 802.3
               has a length in place of the EtherType.
  DROPPED      Packets lost while capturing, if the file says so; a pcap
               file cannot.
  TRAILERS     GOOSE and SV frames with octets after the PDU that are
               neither padding nor a PRP trailer: a signature, or a
               trailer whose size does not fit.

)";

std::string capturesNotes() {
    auto const fields = listFields(fieldNames(captureLayout()),
                                   {{"linkTypes", "a list of numbers"},
                                    {"lastTimeNs", "nanoseconds since 1970"},
                                    {"other", "an object, protocol to number of frames"},
                                    {"unknownTrailers", "TRAILERS"}});
    return kCapturesNotes + paragraph("The fields of json and csv: " + fields + ".");
}

std::string summaryOf(TrafficIndex const& index) {
    CaptureSummary sum;
    for (auto const& file : index.files()) {
        CaptureSummary const& each = file.summary;
        sum.records += each.records;
        sum.gooseFrames += each.gooseFrames;
        sum.svFrames += each.svFrames;
        if (each.first) {
            sum.first = std::min(sum.first.value_or(*each.first), *each.first);
        }
        sum.last = std::max(sum.last, each.last);
    }
    std::string const span =
        sum.first && sum.last
            ? fmt::format(", {} to {}", toUtcText(*sum.first), toUtcText(*sum.last))
            : std::string();
    return fmt::format("{} ({} GOOSE, {} SV, {} other) in {}{}", plural(sum.records, "record"),
                       sum.gooseFrames, sum.svFrames, sum.records - sum.gooseFrames - sum.svFrames,
                       plural(index.files().size(), "file"), span);
}

}  // namespace

void addCapturesCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<CommonOptions>();
    CommandDefinition& command =
        addCommand(program, "captures", "List captures: format, times, frames, damage.");
    addCommonOptions(command, *options);
    addJobsOption(command, options->jobs);
    command.notes = capturesNotes();
    command.examples = {"tal-iec61850 captures recorded/",
                        "tal-iec61850 captures --format json bay1.pcap bay2.pcapng | jq .other"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runCaptures(*options); }; });
}

ExitStatus runCaptures(CommonOptions const& options) {
    auto const layout = chooseColumns(captureLayout(), options.columns);
    CommandRun run(options);
    TrafficIndex const index = surveyTraffic(run, options.jobs);
    reportFaults(run, index);
    auto writer = run.rowWriter(layout);
    for (std::size_t i = 0; i < run.captures().size(); ++i) {
        CaptureRow const row{.file = run.captures()[i].name, .summary = &index.files()[i].summary};
        writer.write(row);
    }
    writer.finish();
    run.writeSummary(summaryOf(index));
    return run.finish();
}

}  // namespace TalIec61850Tools
