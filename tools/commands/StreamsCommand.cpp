#include "tools/commands/StreamsCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <atomic>
#include <memory>
#include <set>

#include "tools/input/CaptureCheck.hpp"
#include "tools/output/CsvWriter.hpp"
#include "tools/output/JsonWriter.hpp"
#include "tools/output/Messages.hpp"
#include "tools/output/ProgressBar.hpp"
#include "tools/output/TableWriter.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

using TalIec61850Parser::Db;
using TalIec61850Parser::Filter;
using TalIec61850Parser::PcapParser;

namespace {

constexpr char const* kNotes = R"(What the columns mean:
  Identity    SOURCE, DESTINATION, VLAN, APPID, HSR lane (SV), R1B0 (bit 0 of the second
              octet of Reserved 1), CONFREV, SIM-ELEM and the names tell streams apart.
  HSR, PRP    GOOSE streams are not told apart by HSR lane, no stream is by PRP network:
              what is shown there is that of the stream's first packet.
  SIM-ELEM    GOOSE: whether frames carry the simulation element, be it true or false.
  FIRST, LAST Capture times, UTC. PACKETS/S is the mean rate between them.

json writes one object per line, csv one line per stream below a line of names; both have the
fields protocol, source, destination, vlanId, appId, hsrLane, prpLane, reserved1Bit0, svID,
gocbRef, datSet, goID, confRev, simulationPresent, packets, files, firstTime, firstTimeNs,
lastTime, lastTimeNs (nanoseconds since 1970), packetsPerSecond.
Table and csv show control characters in names as \n, \x1b and the like, a backslash as \\.

Exit status: 0 fine, 1 wrong usage, 2 a file could not be read or output could not be written.

Example:
  tal-iec61850 streams --format json bay1.pcap bay2.pcap)";

/// Adds one file to the store.
void indexFile(std::string const& path, Db& db, bool showsProgress) {
    std::atomic<bool> const neverStop = false;
    ProgressBar bar(path, showsProgress);
    PcapParser::parseFile(path, db, Filter{}, neverStop,
                          [&](double fraction) { bar.show(fraction); });
}

/// @return whether all of them could be indexed
[[nodiscard]] bool indexFiles(StreamsOptions const& options, Db& db) {
    bool const showsProgress = !options.quiet && isErrorTerminal();
    bool isComplete = true;
    std::set<std::string> refused;
    std::set<FileIdentity> indexed;
    for (std::string const& path : options.files) {
        CaptureCheck const check = checkCapture(path);
        if (!check.fault) {
            if (indexed.insert(check.identity).second) {
                indexFile(path, db, showsProgress);
            }
            continue;
        }
        isComplete = false;
        if (refused.insert(path).second) {
            complain(fmt::format("{}: {}", path.empty() ? "''" : escapeText(path), *check.fault));
        }
    }
    return isComplete;
}

void writeRows(std::string const& format, std::vector<StreamRow> const& rows) {
    if (format == "json") {
        writeJson(rows, writeOutput);
    } else if (format == "csv") {
        writeCsv(rows, writeOutput);
    } else {
        writeTable(rows, writeOutput);
    }
    finishOutput();
}

}  // namespace

void addStreamsCommand(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<StreamsOptions>();
    CLI::App& command =
        *program.add_subcommand("streams", "List the GOOSE and SV streams of captures.");
    command.add_option("FILE", options->files, "Captures in the classic format")->required();
    command.add_option("-f,--format", options->format, "What to write")
        ->check(CLI::IsMember({"table", "json", "csv"}))
        ->capture_default_str();
    command.add_flag("-q,--quiet", options->quiet, "Show no progress");
    command.footer(kNotes);
    command.callback([options, &chosen] { chosen = [options] { return runStreams(*options); }; });
}

ExitStatus runStreams(StreamsOptions const& options) {
    Db db;
    bool const isComplete = indexFiles(options, db);
    writeRows(options.format, collectRows(db));
    return isComplete ? ExitStatus::success : ExitStatus::failure;
}

}  // namespace TalIec61850Tools
