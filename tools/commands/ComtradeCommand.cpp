#include "tools/commands/ComtradeCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeFile.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeLimit.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRows.hpp>
#include <algorithm>
#include <chrono>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/WantedSamples.hpp"
#include "tools/options/ComtradeOptions.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/BackgroundOutput.hpp"
#include "tools/output/Complain.hpp"
#include "tools/output/FileSet.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/record/RecordRefusal.hpp"
#include "tools/record/SampleRecord.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/RecordText.hpp"
#include "tools/render/SampleNotes.hpp"
#include "tools/render/SampleText.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

std::string comtradeNotes() {
    return paragraph(
               "Writes the samples of SV streams of one rate as a COMTRADE record, in a window of "
               "sample times: one row for each instant, and for each sample that was lost a row "
               "marked as missing. BINARY32 holds INT32 samples bit for bit. BASE.hdr says in "
               "words where times, scales and names come from.") +
           "\n" +
           paragraph(
               "Channels are named by svID: MU01_Ia to MU01_Un where samples are those of 9-2LE, "
               "in A and V by 1 mA and 10 mV a count; else MU01_ch1 and so on, in counts, see "
               "--scale. What changes in the window (rate, data set, its revision, layout) makes "
               "no record: choose one part. Streams that sample at other instants are put "
               "together only with --align nearest.") +
           "\n" +
           paragraph(std::string(kNameNotes) +
                     " Channels then have name, phase, unit, scale and logical node from it as far "
                     "as it says these; members of --goose have their names, by which --member "
                     "selects them, with or without the logical device and the IED in front.") +
           "\n" + kTimeNotes + "\n" + paragraph(kContentNotes) + "\n" + paragraph(layoutNotes());
}

ComtradeFormat formatOf(ComtradeOptions const& options) {
    bool const is1999 = options.edition == ComtradeEdition::of1999;
    ComtradeFormat const format{
        .edition = options.edition,
        .data = options.data.value_or(is1999 ? ComtradeData::binary : ComtradeData::binary32)};
    if (is1999 && format.data == ComtradeData::binary32) {
        throw UsageError("--data binary32 is of edition 2013");
    }
    if (is1999 && options.inOneFile) {
        throw UsageError("--cff is of edition 2013");
    }
    return format;
}

QualityChannels qualityOf(ComtradeOptions const& options) {
    if (options.quality == "none") {
        return QualityChannels::none;
    }
    return options.quality == "bits" ? QualityChannels::bits : QualityChannels::all;
}

void check(ComtradeOptions const& options) {
    options.choice.check();
    static_cast<void>(formatOf(options));
    checkNameOptions(options.choice.common, options.choice.criteria);
    if (!options.members.empty() && options.gocbRefs.empty()) {
        throw UsageError("--member goes with --goose, whose members it selects");
    }
    if (options.split && *options.split <= std::chrono::nanoseconds(0)) {
        throw UsageError("--split takes a length of time above 0");
    }
    if (options.split && !options.moreArounds.empty()) {
        throw UsageError("--split goes with one window");
    }
    if (options.base.empty() || options.base == "-" || options.base.ends_with('/')) {
        throw UsageError("-o names files: a folder or standard output cannot be one");
    }
}

/// Writes the records of a command.
class RecordWriter {
public:
    RecordWriter(CommandRun& run, ComtradeOptions const& options)
        : run_(run), options_(options), samples_(run, options.choice) {
        static_cast<void>(samples_.mostChannels());
    }

    ExitStatus write() {
        if (samples_.streams().empty()) {
            samples_.noteIfNone(0);
            complain("no record is written: there is no SV stream to write");
            return ExitStatus::failure;
        }
        try {
            readStates();
            writeAll();
        } catch (RecordRefusal const& refusal) {
            complain(fmt::format("no record is written: {}", refusal.what()));
            return ExitStatus::failure;
        } catch (OutputError const&) {
            throw;
        } catch (std::system_error const& error) {
            complain(fmt::format("no record is written: {}", faultText(error.code())));
            return ExitStatus::failure;
        }
        return isOneRefused_ ? ExitStatus::failure : run_.finish();
    }

private:
    void readStates() {
        if (options_.gocbRefs.empty()) {
            return;
        }
        PacketCriteria criteria;
        criteria.protocol = Protocol::goose;
        criteria.gocbRefs = options_.gocbRefs;
        TrafficIndex const index = indexTraffic(run_, criteria, options_.choice.common.jobs);
        FrameReader frames(TalIec61850Tools::pathsOf(run_));
        states_ = readGooseStates(index, frames,
                                  {.members = options_.members,
                                   .names = &samples_.names(),
                                   .nameOf = [this](std::uint32_t file) -> std::string_view {
                                       return samples_.fileName(file);
                                   }});
        if (states_.empty()) {
            complain(fmt::format("no GOOSE stream of --goose has {}booleans or double points",
                                 options_.members.empty() ? "" : "such "));
        }
    }

    /// One record of the command.
    struct Part {
        SampleOptions window;
        /// Empty where it is the only one.
        std::string number;
    };

    void writeAll() {
        std::vector<Part> const parts = options_.split ? splitParts() : windowParts();
        isOnly_ = parts.size() == 1;
        for (Part const& part : parts) {
            for (std::string const& path : pathsOf(part.number)) {
                run_.refuseToOverwrite(path);
            }
        }
        for (Part const& part : inOrderOfTime(parts)) {
            try {
                writeRecord(part);
            } catch (RecordRefusal const& refusal) {
                if (parts.size() == 1) {
                    throw;
                }
                complain(fmt::format("{} is not written: {}",
                                     escapeText(options_.base + part.number), refusal.what()));
                isOneRefused_ = true;
            }
        }
    }

    [[nodiscard]] std::vector<Part> windowParts() const {
        WindowOptions window = options_.choice.window;
        bool const areSeveral = !options_.moreArounds.empty();
        std::size_t number = 1;
        std::vector<Part> parts = {{samples_.options(SampleRows::everySample, window),
                                    areSeveral ? numberText(number) : ""}};
        for (TimeBound const& around : options_.moreArounds) {
            window.around = around;
            parts.push_back(
                {samples_.options(SampleRows::everySample, window), numberText(++number)});
        }
        return parts;
    }

    /// So that a record can go on where one before it has read to.
    [[nodiscard]] static std::vector<Part> inOrderOfTime(std::vector<Part> parts) {
        std::ranges::stable_sort(parts, {}, [](Part const& part) { return part.window.from; });
        return parts;
    }

    /// One part after the other, from the first sample on.
    [[nodiscard]] std::vector<Part> splitParts() const {
        SampleOptions const whole = samples_.options(SampleRows::everySample);
        RecordSurvey const survey = recordOf(whole).survey();
        std::int64_t const length = options_.split->count();
        if (survey.rows == 0) {
            refuseNone();
        }
        std::int64_t const last = survey.grid.timeOf(static_cast<std::int64_t>(survey.rows) - 1);
        if ((last - survey.grid.start) / length >= kMostParts) {
            throw RecordRefusal(fmt::format("--split would make more than {} records", kMostParts));
        }
        std::vector<Part> parts;
        for (std::int64_t start = survey.grid.start; start <= last; start += length) {
            Part part{whole, numberText(parts.size() + 1)};
            part.window.from = captureTimeOf(start);
            part.window.end = std::min(whole.end.value_or(CaptureTime::max()),
                                       *part.window.from + *options_.split);
            parts.push_back(std::move(part));
        }
        return parts;
    }

    [[nodiscard]] static std::string numberText(std::size_t number) {
        return fmt::format("-{:03}", number);
    }

    [[nodiscard]] std::vector<std::string> pathsOf(std::string const& number) const {
        std::string const base = options_.base + number;
        return options_.inOneFile
                   ? std::vector<std::string>{base + ".cff"}
                   : std::vector<std::string>{base + ".dat", base + ".hdr", base + ".cfg"};
    }

    [[nodiscard]] SampleRecord recordOf(SampleOptions const& window) const {
        RecordWish wish;
        wish.format = formatOf(options_);
        wish.options = window;
        wish.quality = qualityOf(options_);
        wish.placing = options_.alignsNearest ? GridPlacing::nearest : GridPlacing::exact;
        wish.states = &states_;
        wish.frequency = options_.frequency;
        wish.station = options_.station;
        if (options_.trigger) {
            wish.trigger = options_.trigger->resolve(spanOf(samples_.index()));
        }
        for (WantedStream const& stream : samples_.streams()) {
            RecordSource source;
            source.stream = stream.stream;
            for (std::size_t const channel : options_.choice.channels) {
                source.channels.push_back(channel - 1);
            }
            source.scales = options_.choice.scales;
            source.given = samples_.layoutOf(stream);
            source.described = stream.described;
            source.before = readBefore(stream.stream, window.from);
            wish.sources.push_back(std::move(source));
        }
        return {samples_.index(), std::move(wish),
                [this](SampleBlock const& block, std::size_t row) {
                    return fmt::format("{}@{}",
                                       escapeText(samples_.fileName(block.places[row].file)),
                                       block.places[row].fileOffset);
                },
                [this](SampleBlock const& block) { return samples_.isWanted(block); }};
    }

    /// @return what has read a stream up to some time that is not after the start of a window;
    ///         null where nothing has
    [[nodiscard]] std::shared_ptr<SampleReader const> readBefore(
        TrafficStream const* stream, std::optional<CaptureTime> const& from) const {
        auto const after = from ? readTo_.upper_bound(*from) : readTo_.begin();
        if (after == readTo_.begin()) {
            return nullptr;
        }
        Readers const& readers = std::prev(after)->second;
        auto const reader = readers.find(stream);
        return reader == readers.end() ? nullptr : reader->second;
    }

    /// Keeps what has read up to the end of a window, for those after it.
    void rememberReaders(SampleRecord const& record, SampleOptions const& window) {
        if (isOnly_ || !window.from || !window.end) {
            return;
        }
        // Windows to come begin no earlier than this one.
        auto const kept = readTo_.upper_bound(*window.from);
        readTo_.erase(readTo_.begin(), kept == readTo_.begin() ? kept : std::prev(kept));
        Readers& readers = readTo_[*window.end];
        for (RecordSource const& source : record.sources()) {
            readers[source.stream] = source.upToEnd;
        }
    }

    [[noreturn]] static void refuseNone() {
        throw RecordRefusal("there is no sample in the window");
    }

    /// A record is mostly samples, or it is not what was meant: a window over a gap of days.
    static void refuseEmpty(RecordSurvey const& survey) {
        constexpr std::uint64_t kManyRows = 10'000'000;
        constexpr std::uint64_t kFew = 100;
        if (survey.rows > kManyRows && survey.received < survey.rows / kFew) {
            throw RecordRefusal(
                fmt::format("of {} rows only {} have samples: choose a part, by --from and --to",
                            survey.rows, survey.received));
        }
    }

    void writeRecord(Part const& part) {
        SampleRecord const record = recordOf(part.window);
        rememberReaders(record, part.window);
        if (options_.split && record.survey().received == 0) {
            return;  // all of the part was lost
        }
        if (record.survey().rows == 0) {
            refuseNone();
        }
        refuseEmpty(record.survey());
        if (auto const limit = brokenLimit(record.record())) {
            throw RecordRefusal(std::string(toText(*limit)));
        }
        notes_.clear();
        if (std::string const aligned = alignmentText(record.survey()); !aligned.empty()) {
            notes_.push_back(escapeText(options_.base + part.number) + ":" + aligned);
        }
        FileSet files;
        std::vector<ComtradeLosses> const losses = options_.inOneFile
                                                       ? writeOneFile(files, record, part.number)
                                                       : writeFiles(files, record, part.number);
        files.finish();
        for (std::string const& note : notes_) {
            complain(note);
        }
        if (std::string const lost = lossesText(record.record(), losses); !lost.empty()) {
            complain(escapeText(lost));
        }
    }

    /// Notes are taken once, and told when a record is written: it may be refused until then.
    std::vector<ComtradeLosses> writeRows(SampleRecord const& record, Output* output) {
        std::optional<BackgroundOutput> background;
        if (output != nullptr) {
            background.emplace(*output);
        }
        ComtradeRows rows(record.record(), [&](std::span<std::uint8_t const> octets) {
            if (background) {
                background->write({reinterpret_cast<char const*>(octets.data()), octets.size()});
            }
        });
        std::vector<SampleNotes> notes;
        for (RecordSource const& source : record.sources()) {
            notes.emplace_back(
                *source.stream,
                [this](std::uint32_t file) -> auto const& { return samples_.fileName(file); },
                [this](std::string const& text) { notes_.push_back(text); });
        }
        counts_ = record.write(rows, [&](std::size_t source, SampleBlock const& block) {
            if (output != nullptr) {
                notes[source].look(block);
            }
        });
        rows.finish();
        if (background) {
            background->finish();
        }
        for (std::size_t source = 0; output != nullptr && source < notes.size(); ++source) {
            // Of several records, each goes through the streams from their starts.
            notes[source].finish(isOnly_ ? counts_[source] : SampleCounts());
        }
        return {rows.losses().begin(), rows.losses().end()};
    }

    std::vector<ComtradeLosses> writeFiles(FileSet& files, SampleRecord const& record,
                                           std::string const& number) {
        auto const paths = pathsOf(number);
        auto losses = writeRows(record, &files.add(paths[0]));
        files.add(paths[1]).write(comtradeText(headerOf(record, losses)));
        files.add(paths[2]).write(comtradeConfiguration(record.record()));
        return losses;
    }

    /// The header comes before the samples, so what they lose is found out first.
    std::vector<ComtradeLosses> writeOneFile(FileSet& files, SampleRecord const& record,
                                             std::string const& number) {
        auto losses = writeRows(record, nullptr);
        Output& file = files.add(pathsOf(number)[0]);
        file.write(comtradeFileHead(record.record(), "", headerOf(record, losses)));
        static_cast<void>(writeRows(record, &file));
        return losses;
    }

    [[nodiscard]] std::string headerOf(SampleRecord const& record,
                                       std::vector<ComtradeLosses> const& losses) const {
        RecordSurvey const& survey = record.survey();
        RecordRemarks remarks;
        for (CaptureSource const& capture : run_.captures()) {
            remarks.files.push_back(escapeText(capture.name));
        }
        remarks.rate = rateText(survey.grid.rate, survey.rateSource);
        for (RecordSource const& source : record.sources()) {
            remarks.layouts.push_back(layoutOf(*source.stream, source.layout));
        }
        auto const by = [&](SampleTimeSource source) {
            return survey.timeSources[static_cast<std::size_t>(source)];
        };
        remarks.times = fmt::format(
            "Times of samples: {} by refrTm, {} by smpSynch 2 and smpCnt, {} by a line fitted "
            "through times of arrival. {}",
            by(SampleTimeSource::refrTm), by(SampleTimeSource::smpCnt), by(SampleTimeSource::fit),
            survey.isGlobal ? "smpSynch is 2 throughout."
                            : "smpSynch is not 2 throughout: absolute time is not reliable.");
        remarks.missing = fmt::format("Samples: {}; {} missing, marked so in their rows.{}",
                                      survey.received, survey.missing, alignmentText(survey)) +
                          orderText(record);
        remarks.scales = scaleText(record);
        if (!record.record().digitals.empty()) {
            remarks.digitals =
                "Digital channels: quality bits of samples, where smpSynch is not 2 if it is 2 "
                "elsewhere, and states of GOOSE members, which hold from the arrival of a packet "
                "on; before the first packet they are 0.";
        }
        return recordText(record.record(), remarks, losses);
    }

    /// What came of --align nearest, if anything.
    [[nodiscard]] static std::string alignmentText(RecordSurvey const& survey) {
        GridAlignment const& aligned = survey.alignment;
        if (aligned.leftOut == 0 && aligned.inTwoRows == 0) {
            return {};
        }
        return fmt::format(
            " --align nearest left out {} to which no row is nearest, and put {} into two rows.",
            plural(aligned.leftOut, "sample"), aligned.inTwoRows);
    }

    /// Which samples did not come in their order; a line for each stream that has some.
    [[nodiscard]] std::string orderText(SampleRecord const& record) const {
        std::string text;
        for (std::size_t source = 0; source < counts_.size(); ++source) {
            SampleCounts const& counts = counts_[source];
            if (counts.late != 0 || counts.repeated != 0) {
                text += fmt::format(
                    "\n{}: of the samples that were gone through, {} late, each in its place, and "
                    "{} repeated, left out.",
                    escapeText(record.sources()[source].stream->key.name), counts.late,
                    counts.repeated);
            }
        }
        return text;
    }

    /// The layout that samples of a stream have in a record, and on what grounds.
    [[nodiscard]] std::string layoutOf(TrafficStream const& stream,
                                       SampleLayout const& layout) const {
        for (WantedStream const& wanted : samples_.streams()) {
            for (auto const& known : wanted.layouts) {
                if (wanted.stream == &stream && known.found.layout == layout) {
                    return fmt::format("{}: {}, {}", escapeText(stream.key.name),
                                       layoutText(known.found, known.dataSize),
                                       wanted.isDescribed(known.found) ? "as described"
                                                                       : groundsText(known.found));
                }
            }
        }
        return escapeText(stream.key.name);
    }

    [[nodiscard]] static std::string groundsText(FoundLayout const& found) {
        switch (found.source) {
            case LayoutSource::given:
                return "as given on the command line";
            case LayoutSource::inferred:
                return fmt::format("inferred from {}", plural(found.asdus, "ASDU"));
            default:
                return fmt::format("not decided by {}", plural(found.asdus, "ASDU"));
        }
    }

    [[nodiscard]] std::string scaleText(SampleRecord const& record) const {
        if (!options_.choice.scales.empty()) {
            return "Scales: as given on the command line.";
        }
        if (std::any_of(
                record.sources().begin(), record.sources().end(), [](RecordSource const& source) {
                    return source.described != nullptr && source.described->layout == source.layout;
                })) {
            return "Scales, units and names: as the description of the station has them; what it "
                   "leaves out of samples of 9-2LE is as 9-2LE has it, and else values are counts "
                   "(raw).";
        }
        for (ComtradeAnalog const& analog : record.record().analogs) {
            if (analog.unit.empty()) {
                return "Scales: where they are not known, values are counts (raw); else those of "
                       "9-2LE.";
            }
        }
        return "Scales and names: those of 9-2LE, 1 mA and 10 mV a count, primary values.";
    }

    static constexpr std::int64_t kMostParts = 100'000;

    CommandRun& run_;
    ComtradeOptions const& options_;
    WantedSamples samples_;
    std::vector<GooseState> states_;
    std::vector<std::string> notes_;
    using Readers = std::map<TrafficStream const*, std::shared_ptr<SampleReader const>>;
    /// What has read all that is before a time.
    std::map<CaptureTime, Readers> readTo_;
    /// Of the record that is written: what became of the samples of each source.
    std::vector<SampleCounts> counts_;
    bool isOnly_ = true;
    bool isOneRefused_ = false;
};

ExitStatus runComtrade(ComtradeOptions const& options) {
    check(options);
    CommandRun run(options.choice.common);
    RecordWriter writer(run, options);
    return writer.write();
}

}  // namespace

void addComtradeCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<ComtradeOptions>();
    CommandDefinition& command =
        addCommand(program, "comtrade", "Write the samples of SV streams as COMTRADE records.");
    addComtradeOptions(command, *options);
    command.notes = comtradeNotes();
    command.examples = {"tal-iec61850 comtrade -o trip --around 10:00:00.28 --span 2s bay1.pcap",
                        "tal-iec61850 comtrade -o trip --quality bits --goose '*gcbTrip' bay1.pcap",
                        "tal-iec61850 comtrade -o trip --scl bay1.scd --goose '*gcbTrip' bay1.pcap",
                        "tal-iec61850 comtrade -o old --edition 1999 --svid MU01 bay1.pcap"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runComtrade(*options); }; });
}

}  // namespace TalIec61850Tools
