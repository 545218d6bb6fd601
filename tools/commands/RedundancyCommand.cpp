#include "tools/commands/RedundancyCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Analysis/redundancy/PairCopies.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/CommonOptions.hpp"
#include "tools/options/JobsOption.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/options/WindowOptions.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/RedundancyLayout.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::PairingOptions;
using TalIec61850Analysis::RedundancyFault;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficRedundancy;

namespace {

/// The arguments of `tal-iec61850 redundancy`.
struct RedundancyOptions {
    CommonOptions common;
    PacketCriteria criteria;
    WindowOptions window;
};

constexpr char const* kRedundancyNotes = R"(What the columns mean:
  BOTH         Frames that came once over each way: lane A and B of HSR,
               LAN A and B of PRP. The copies have one source and one
               sequence number, and come within 400 ms.
  ONLYA, ONLYB Frames that came over one way alone, those at the ends of
               the captures included.
  MORE         Frames that came more than once over one way.
  FIRSTA/B     Of BOTH, those that came over that way first.
  B-A          Of BOTH, the time over B minus that over A, as the
               captures say it.
  CLOCK/NS     Where one file has A and another B: how far the clock of
               B is ahead. The constant part of the time over the network
               is in it: nothing tells the two apart.
  RUNSA, RUNSB How often copies are missing, one after the other as one,
               that the captures should have.
  DIFFERS      Frames whose copies have other octets, besides the way.
  WRONGLAN     Frames that came twice with one LAN, and not with the
               other.

)";

std::string redundancyNotes() {
    auto const fields = listFields(
        fieldNames(redundancyLayout(Format::json)),
        {{"redundancy", "hsr or prp"},
         {"differenceNs", "min, p50, p99 and max; in csv four columns: differenceMinNs and so on"},
         {"clockOffsetNs", "null with one clock"}});
    return kRedundancyNotes +
           paragraph(
               "A copy is missing where the source was heard over that way within the last second, "
               "and the captures of that way go on for 400 ms before and after. All frames of the "
               "captures are paired; those in the window are counted, by their first copy. Streams "
               "without HSR tags and PRP trailers are left out.") +
           "\n" + kTimeNotes + "\n" + paragraph(kContentNotes) + "\n" +
           paragraph("The fields of json and csv: " + fields + ".");
}

/// Copies share the sequence numbers of all streams of their source.
PacketCriteria allOfSources(PacketCriteria const& criteria) {
    PacketCriteria all;
    all.sources = criteria.sources;
    return all;
}

void noteNothing(CommandRun const& run, TrafficIndex const& index,
                 TrafficRedundancy const& redundancy, RedundancyOptions const& options) {
    auto const isListed = [&](auto const& stream) {
        return isWanted(index, stream, options.criteria);
    };
    auto const streams = std::count_if(index.streams().begin(), index.streams().end(), isListed);
    if (streams == 0) {
        noteNoStreams(run, indexTraffic(run, options.criteria, options.common.jobs),
                      options.criteria, options.common.jobs);
        return;
    }
    bool const isAny =
        std::any_of(redundancy.streams.begin(), redundancy.streams.end(),
                    [&](auto const& each) { return isListed(index.streams()[each.stream]); });
    if (isAny) {
        noteOtherTimes(run, collectRows(index, options.criteria));
    } else {
        noteNoRedundancy(run, static_cast<std::size_t>(streams));
    }
}

ExitStatus runRedundancy(RedundancyOptions const& options) {
    options.window.check();
    auto const layout =
        chooseColumns(redundancyLayout(options.common.format), options.common.columns);
    CommandRun run(options.common);
    TrafficIndex const index =
        indexTraffic(run, allOfSources(options.criteria), options.common.jobs);
    reportFaults(run, index);
    PairingOptions const pairing{.window = options.window.resolve(spanOf(index)), .stop = {}};
    TrafficRedundancy redundancy;
    bool isLost = false;
    try {
        redundancy = pairCopies(index, pairing, [](RedundancyFault const&) {});
    } catch (std::system_error const& error) {
        isLost = true;
        run.complainOf(nameOfAll(run.captures()), faultText(error.code()));
    }
    auto const rows = collectRedundancyRows(index, redundancy, options.criteria);
    auto writer = run.rowWriter(layout);
    std::uint64_t frames = 0;
    for (RedundancyRow const& row : rows) {
        writer.write(row);
        frames += row.counts.frames();
    }
    writer.finish();
    if (rows.empty() && !isLost) {
        noteNothing(run, index, redundancy, options);
    }
    run.writeSummary(fmt::format("{} of {} in {}", plural(frames, "frame"),
                                 plural(rows.size(), "stream"),
                                 plural(run.captures().size(), "file")));
    return run.finish();
}

}  // namespace

void addRedundancyCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<RedundancyOptions>();
    CommandDefinition& command = addCommand(
        program, "redundancy", "Pair the copies of frames over both lanes of HSR or LANs of PRP.");
    addCommonOptions(command, options->common);
    addJobsOption(command, options->common.jobs);
    addWindowOptions(command, options->window);
    addContentOptions(command, options->criteria);
    command.notes = redundancyNotes();
    command.examples = {"tal-iec61850 redundancy bay1.pcap",
                        "tal-iec61850 redundancy -f json lan-a.pcap lan-b.pcap",
                        "tal-iec61850 redundancy --svid 'MU*' --from -10s captures/"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runRedundancy(*options); }; });
}

}  // namespace TalIec61850Tools
