#include "tools/commands/JudgeCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <functional>
#include <map>
#include <memory>
#include <system_error>

#include "tools/commands/CommandRun.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/library/LibraryOptions.hpp"
#include "tools/library/VerdictLayout.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/CaptureText.hpp"

namespace TalIec61850Tools {

using TalIec61850Parser::Filter;

namespace {

constexpr std::uint64_t kRecordsPerProgress = 1000;

constexpr char const* kVerdictNotes = R"(  wanted               meets the options on streams
  rejectedByLinkLayer  by address, VLAN, HSR or PRP
  rejectedByPdu        by header or PDU, or too short for them
  switchedOff          of a protocol that is not asked for
  otherProtocol        neither GOOSE nor SV
ANSWER is what that operation returns, which is the other way round for
SV.

)";

std::string judgeNotes() {
    auto const counts = listFields(fieldNames(verdictCountLayout()), {{"octets", "captured"}});
    auto const frames =
        listFields(fieldNames(judgedFrameLayout()),
                   {{"timeNs", "nanoseconds since 1970"}, {"recordPosition", "octets"}});
    return paragraph(
               "Asks the library about each frame by itself, as EthernetParser::parsePacketSimple "
               "does: without an index, and without a file. Verdicts:") +
           kVerdictNotes +
           paragraph(
               "The options on streams are the library's filter here: names are met as they are, "
               "without * and ?; a frame without VLAN tag, HSR tag or PRP trailer is not asked for "
               "it; of several ASDUs each must meet --svid. An option may be given several times, "
               "save --protocol and --simulation-element: one of its values must be met. A record "
               "that the file ends inside is not judged.") +
           "\n" +
           paragraph(
               fmt::format("The fields of json and csv: {}; with --list {}.", counts, frames));
}

using FrameTaker = std::function<void(JudgedFrame const&)>;

/// Judges the frames of one capture.
/// @return what is wrong with it
/// @throws std::system_error  it cannot be read
std::optional<std::string> judgeCapture(CaptureSource const& capture, Filter const& filter,
                                        ProgressBar& bar, FrameTaker const& take) {
    TalIec61850Analysis::CaptureFile file(capture.path);
    bar.startFile(capture.name, capture.size);
    std::vector<std::uint8_t> octets;
    for (std::uint64_t count = 0; auto const* const view = file.next(); ++count) {
        if (count % kRecordsPerProgress == 0) {
            bar.show(static_cast<double>(view->record.fileOffset) /
                     static_cast<double>(capture.size));
        }
        octets.assign(view->frame.begin(), view->frame.end());
        take({.verdict = judgeFrame(octets, filter), .file = capture.name, .record = view->record});
    }
    return file.damage() ? std::optional(damageText(*file.damage())) : std::nullopt;
}

/// Judges all frames of all captures, and reports damaged captures.
void judgeCaptures(CommandRun& run, Filter const& filter, FrameTaker const& take) {
    ProgressBar bar = run.progressBar();
    for (auto const& capture : run.captures()) {
        std::optional<std::string> fault;
        try {
            fault = judgeCapture(capture, filter, bar, take);
        } catch (OutputError const&) {
            throw;
        } catch (std::system_error const& error) {
            fault = faultText(error.code());
        }
        if (fault) {
            bar.erase();
            run.complainOf(capture.name, *fault);
        }
    }
}

using Counts = std::map<FrameVerdict, VerdictCount>;

void writeCounts(CommandRun& run, RowLayout<VerdictCount> const& layout, Counts const& counts) {
    auto writer = run.rowWriter(layout);
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

void addJudgeCommand(ProgramDefinition& program, CommandDefinition const& group, Action& chosen) {
    auto const options = std::make_shared<JudgeOptions>();
    CommandDefinition& command =
        addCommand(program, group, "judge",
                   "Count which frames the library's verdict on single frames accepts.");
    addCommonOptions(command, options->common);
    command.parser->add_flag("-l,--list", options->listsFrames,
                             "One row for each frame, in their order");
    addLibraryOptions(command, options->criteria);
    command.notes = judgeNotes();
    command.examples = {"tal-iec61850 library judge --protocol goose --appid 0x0001 bay1.pcap"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runJudge(*options); }; });
}

ExitStatus runJudge(JudgeOptions const& options) {
    auto const countLayout = options.listsFrames
                                 ? RowLayout<VerdictCount>()
                                 : chooseColumns(verdictCountLayout(), options.common.columns);
    auto const frameLayout = options.listsFrames
                                 ? chooseColumns(judgedFrameLayout(), options.common.columns)
                                 : RowLayout<JudgedFrame>();
    CommandRun run(options.common);
    Filter const filter = toFrameFilter(options.criteria);
    Counts counts;
    std::optional<RowWriter<JudgedFrame>> frames;
    if (options.listsFrames) {
        frames.emplace(run.rowWriter(frameLayout));
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
        writeCounts(run, countLayout, counts);
    }
    run.writeSummary(summaryOf(counts, run.captures().size()));
    return run.finish();
}

}  // namespace TalIec61850Tools
