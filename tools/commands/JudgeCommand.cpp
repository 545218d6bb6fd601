#include "tools/commands/JudgeCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <system_error>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/FrameVerdict.hpp"
#include "tools/commands/SelectionOptions.hpp"
#include "tools/input/CaptureRecords.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/selection/StreamFields.hpp"

namespace TalIec61850Tools {

using TalIec61850Parser::Filter;

namespace {

constexpr std::uint64_t kRecordsPerProgress = 1000;

constexpr char const* kNotes =
    R"(Asks the library about each frame by itself, as EthernetParser::parsePacketSimple does: without an
index, and without a file. Verdicts:
  wanted               meets the options on streams
  rejectedByLinkLayer  by address, VLAN, HSR or PRP
  rejectedByPdu        by header or PDU, or too short for them
  switchedOff          of a protocol that is not asked for
  otherProtocol        neither GOOSE nor SV
ANSWER is what that operation returns, which is the other way round for SV.

The options on streams are the library's filter here: names are met as they stand, without * and ?;
a frame without VLAN tag, HSR tag or PRP trailer is not asked for it; of several ASDUs each must
meet --svid. An option may be given several times: one of its values must be met.

The fields of json and csv: protocol, verdict, answer, frames, octets (captured); with --list time,
timeNs (nanoseconds since 1970), file, recordPosition (octets), protocol, verdict, answer.
)";

std::string protocolText(std::optional<Protocol> protocol) {
    return protocol ? std::string(toText(*protocol)) : std::string("other");
}

std::string answerText(FrameVerdict const& verdict) { return verdict.answer ? "true" : "false"; }

/// How often a verdict came.
struct VerdictCount {
    FrameVerdict verdict;
    std::uint64_t frames = 0;
    std::uint64_t octets = 0;
};

Fields countFields(VerdictCount const& row) {
    return {{"protocol", protocolText(row.verdict.protocol)},
            {"verdict", toText(row.verdict.verdict)},
            {"answer", row.verdict.answer},
            {"frames", row.frames},
            {"octets", row.octets}};
}

constexpr std::array kCountColumns = {
    Column<VerdictCount>{{"PROTO"}, [](auto const& r) { return protocolText(r.verdict.protocol); }},
    Column<VerdictCount>{{"VERDICT"},
                         [](auto const& r) { return std::string(toText(r.verdict.verdict)); }},
    Column<VerdictCount>{{"ANSWER"}, [](auto const& r) { return answerText(r.verdict); }},
    Column<VerdictCount>{{"FRAMES", Align::right},
                         [](auto const& r) { return fmt::to_string(r.frames); }},
    Column<VerdictCount>{{"OCTETS", Align::right},
                         [](auto const& r) { return fmt::to_string(r.octets); }},
};

/// The verdict on one frame.
struct JudgedFrame {
    FrameVerdict verdict;
    std::string file;
    CaptureRecord record;
};

Fields frameFields(JudgedFrame const& row) {
    return {{"time", toUtcText(row.record.time)},
            {"timeNs", nanosecondsSince1970(row.record.time)},
            {"file", row.file},
            {"recordPosition", row.record.position},
            {"protocol", protocolText(row.verdict.protocol)},
            {"verdict", toText(row.verdict.verdict)},
            {"answer", row.verdict.answer}};
}

constexpr std::array kFrameColumns = {
    Column<JudgedFrame>{{"TIME"}, [](auto const& r) { return toUtcText(r.record.time); }},
    Column<JudgedFrame>{{"PROTO"}, [](auto const& r) { return protocolText(r.verdict.protocol); }},
    Column<JudgedFrame>{{"VERDICT"},
                        [](auto const& r) { return std::string(toText(r.verdict.verdict)); }},
    Column<JudgedFrame>{{"ANSWER"}, [](auto const& r) { return answerText(r.verdict); }},
    Column<JudgedFrame>{{"RECORD", Align::right},
                        [](auto const& r) { return fmt::to_string(r.record.position); }},
    Column<JudgedFrame>{{"FILE"}, [](auto const& r) { return escapeText(r.file); }},
};

using FrameTaker = std::function<void(JudgedFrame const&)>;

/// Judges the frames of one capture.
void judgeCapture(CaptureSource const& capture, Filter const& filter, ProgressBar& bar,
                  FrameTaker const& take) {
    CaptureRecords records(capture.path);
    bar.startFile(capture.name, capture.size);
    std::vector<std::uint8_t> octets;
    for (std::uint64_t count = 0; auto const record = records.next(); ++count) {
        if (count % kRecordsPerProgress == 0) {
            bar.show(static_cast<double>(record->position) / static_cast<double>(capture.size));
        }
        auto const frame = records.frameOf(*record);
        octets.assign(frame.begin(), frame.end());
        take({.verdict = judgeFrame(octets, filter), .file = capture.name, .record = *record});
    }
    if (records.damage()) {
        throw std::runtime_error(*records.damage());
    }
}

/// Judges all frames of all captures, and says what is wrong with these.
void judgeCaptures(CommandRun& run, Filter const& filter, FrameTaker const& take) {
    ProgressBar bar = run.progressBar();
    for (auto const& capture : run.captures()) {
        std::string fault;
        try {
            judgeCapture(capture, filter, bar, take);
        } catch (OutputError const&) {
            throw;
        } catch (std::system_error const& error) {
            fault = error.code().message();
        } catch (std::runtime_error const& error) {
            fault = error.what();
        }
        if (!fault.empty()) {
            bar.erase();
            run.complainOf(capture.name, fault);
        }
    }
}

using Counts = std::map<FrameVerdict, VerdictCount>;

void writeCounts(CommandRun& run, Counts const& counts) {
    auto writer = run.rowWriter(RowLayout<VerdictCount>{countFields, kCountColumns});
    for (auto const& verdict : allVerdicts()) {
        auto const found = counts.find(verdict);
        writer.write(found == counts.end() ? VerdictCount{.verdict = verdict} : found->second);
    }
    writer.finish();
}

std::string summaryOf(Counts const& counts, std::size_t captures) {
    std::uint64_t wanted = 0;
    std::uint64_t frames = 0;
    for (auto const& [verdict, count] : counts) {
        frames += count.frames;
        wanted += verdict.verdict == Verdict::wanted ? count.frames : 0;
    }
    return fmt::format("{} of {} in {} wanted", wanted, plural(frames, "frame"),
                       plural(captures, "file"));
}

}  // namespace

void addJudgeCommand(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<JudgeOptions>();
    CLI::App& command = *program.add_subcommand(
        "judge", "Count which frames the library's road for single frames accepts.");
    addCommonOptions(command, options->common);
    command.add_flag("-l,--list", options->listsFrames, "One row for each frame, in their order");
    addCriteriaOptions(command, options->criteria);
    command.footer(makeHelpFooter(kNotes, {"judge --protocol goose --appid 0x0001 bay1.pcap"}));
    command.callback([options, &chosen] { chosen = [options] { return runJudge(*options); }; });
}

ExitStatus runJudge(JudgeOptions const& options) {
    CommandRun run(options.common);
    Filter const filter = toFrameFilter(options.criteria);
    Counts counts;
    std::optional<RowWriter<JudgedFrame>> frames;
    if (options.listsFrames) {
        frames.emplace(run.rowWriter(RowLayout<JudgedFrame>{frameFields, kFrameColumns}));
    }
    judgeCaptures(run, filter, [&](JudgedFrame const& frame) {
        VerdictCount& count = counts[frame.verdict];
        count.verdict = frame.verdict;
        ++count.frames;
        count.octets += frame.record.capturedSize;
        if (frames) {
            frames->write(frame);
        }
    });
    if (frames) {
        frames->finish();
    } else {
        writeCounts(run, counts);
    }
    run.writeSummary(summaryOf(counts, run.captures().size()));
    return run.finish();
}

}  // namespace TalIec61850Tools
