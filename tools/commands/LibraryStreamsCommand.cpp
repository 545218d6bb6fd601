#include "tools/commands/LibraryStreamsCommand.hpp"

#include <CLI/CLI.hpp>
#include <TalIec61850Analysis/file/CaptureSurvey.hpp>
#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <algorithm>
#include <atomic>
#include <functional>
#include <future>
#include <memory>

#include "tools/commands/CommandRun.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/library/LibraryLayout.hpp"
#include "tools/library/LibraryOptions.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/OrderOptions.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/StreamsSummary.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureFormat;
using TalIec61850Analysis::CaptureSurvey;
using TalIec61850Parser::Db;
using TalIec61850Parser::Filter;
using TalIec61850Parser::PcapParser;

namespace {

constexpr char const* kNextGeneration =
    "next-generation capture, which the library does not read; editcap -F nsecpcap converts it";

constexpr char const* kLibraryStreamsNotes = R"(What the columns mean:
  Identity     SOURCE, DESTINATION, VLAN, APPID, HSR lane (SV), R1B0
               (bit 0 of the second octet of Reserved 1), CONFREV,
               SIM-ELEM and the names tell streams apart.
  HSR          GOOSE streams are not told apart by HSR lane: what is
               shown is that of the stream's first packet. So is the PRP
               network (prpLane) of any stream.
  SIM-ELEM     GOOSE: whether frames carry the simulation element, be it
               true or false.
  FIRST, LAST  Capture times, UTC. PACKETS/S is the mean rate between
               them.

)";

std::string libraryStreamsNotes() {
    auto const fields =
        listFields(fieldNames(libraryLayout()), {{"lastTimeNs", "nanoseconds since 1970"}});
    return kLibraryStreamsNotes + paragraph(kLibraryCriteriaNotes) + "\n" +
           paragraph("The fields of json and csv: " + fields + ".");
}

/// Adds one file to the store. Its record headers are walked at the same time, for damage that the
/// library does not report: the file is in the page cache then.
CaptureSurvey indexCapture(CaptureSource const& capture, Filter const& filter, Db& db,
                           ProgressBar& bar) {
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

/// Indexes the captures, one after the other, and reports damage.
Db indexCaptures(CommandRun& run, Filter const& filter) {
    Db db;
    ProgressBar bar = run.progressBar();
    for (auto const& capture : run.captures()) {
        if (capture.format == CaptureFormat::nextGeneration) {
            bar.erase();
            run.complainOf(capture.name, kNextGeneration);
            continue;
        }
        CaptureSurvey const survey = indexCapture(capture, filter, db, bar);
        if (auto const fault = faultText(survey)) {
            bar.erase();
            run.complainOf(capture.name, *fault);
        }
    }
    return db;
}

}  // namespace

void addLibraryStreamsCommand(ProgramDefinition& program, CommandDefinition const& group,
                              Action& chosen) {
    CommandDefinition& command =
        addCommand(program, group, "streams", "List the streams of the library's index.");
    auto const options = std::make_shared<LibraryStreamsOptions>();
    addCommonOptions(command, options->common);
    addOrderOptions(command, options->order, streamOrderKeys<LibraryRow>());
    addLibraryOptions(command, options->criteria);
    command.notes = libraryStreamsNotes();
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runLibraryStreams(*options); }; });
    command.examples = {"tal-iec61850 library streams --format json bay1.pcap bay2.pcap"};
}

ExitStatus runLibraryStreams(LibraryStreamsOptions const& options) {
    auto const layout = chooseColumns(libraryLayout(), options.common.columns);
    CommandRun run(options.common);
    std::vector<LibraryRow> rows = collectRows(indexCaptures(run, toIndexFilter(options.criteria)));
    std::erase_if(rows, [&](LibraryRow const& row) { return !options.criteria.admit(row); });
    sortRows(rows, options.order);
    auto writer = run.rowWriter(layout);
    for (LibraryRow const& row : rows) {
        writer.write(row);
    }
    writer.finish();
    if (rows.empty() && !run.captures().empty()) {
        run.note(options.criteria == LibraryCriteria()
                     ? "no GOOSE or SV streams in the captures"
                     : "no stream meets the options; without them all are listed");
    }
    run.writeSummary(streamsSummary(rows, run.captures().size()));
    return run.finish();
}

}  // namespace TalIec61850Tools
