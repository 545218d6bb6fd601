#include "tools/commands/SamplesCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/commands/WantedSamples.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/LimitOption.hpp"
#include "tools/options/RepeatableOption.hpp"
#include "tools/options/SampleOptions.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/Complain.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/AddressText.hpp"
#include "tools/render/SampleNotes.hpp"
#include "tools/render/SampleRow.hpp"
#include "tools/render/SampleText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::FoundLayout;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleRows;

namespace {

/// What `samples` is asked for.
struct SamplesOptions {
    SampleChoice choice;
    bool isLong = false;
    bool withMissing = false;
    bool isScaled = false;
    std::uint64_t every = 1;
    std::optional<std::uint64_t> limit;
};

std::string samplesNotes() {
    SampleForm const form{.format = Format::json};
    auto const fields = listFields(fieldNames(sampleRowLayout(form)),
                                   {{"timeNs", "arrival, nanoseconds since 1970"},
                                    {"sampleTimeSource", "refrTm, smpCnt or fit"},
                                    {"position", "of the ASDU, in octets"},
                                    {"asdu", "its number in the frame"}});
    return paragraph(
               "A row is a sample: an ASDU, however many a frame has. Streams come one after the "
               "other, and the samples of each in the order in which they were taken: a late one "
               "takes its place, one that came again, over another LAN or lane or in another file, "
               "is left out. The time of a sample is its refrTm; else, where smpSynch is 2, its "
               "second and smpCnt by the rate; else a line fitted through arrival. The window is "
               "one of sample times.") +
           "\n" +
           paragraph(
               "--missing adds rows for samples that never came: smpCnt tells, and for whole "
               "seconds arrival. Restarts, changes of the rate, the data set or its revision, and "
               "a layout that is not certain are told on standard error, with FILE@POSITION.") +
           "\n" + paragraph(layoutNotes()) + "\n" +
           paragraph(
               "--scaled gives amperes and volts where samples are those of 9-2LE: 1 mA and 10 mV "
               "a count. --scale gives units by factors of your own.") +
           "\n" + kTimeNotes + "\n" + paragraph(kContentNotes) + "\n" +
           paragraph("The fields of json: " + fields +
                     ". csv has the same up to missing, then value1, quality1, value2 and so on, "
                     "or names where they are known: Ia, Ia.quality. With --long there is a row "
                     "for each channel: channel, name, value, quality, qualityText.");
}

/// Channels are those of the streams, or of them the wanted ones.
std::vector<std::size_t> channelsOf(SamplesOptions const& options, std::size_t most) {
    std::vector<std::size_t> channels;
    if (options.choice.channels.empty()) {
        for (std::size_t channel = 0; channel < most; ++channel) {
            channels.push_back(channel);
        }
    }
    for (std::size_t const number : options.choice.channels) {
        if (number <= most) {
            channels.push_back(number - 1);
        }
    }
    return channels;
}

SampleForm formOf(SamplesOptions const& options, WantedSamples const& samples) {
    SampleForm form;
    form.format = options.choice.common.format;
    form.isLong = options.isLong;
    form.hasFieldPerChannel = !options.choice.common.columns.empty();
    std::optional<std::vector<std::string>> names;
    for (WantedStream const& stream : samples.streams()) {
        for (auto const& layout : stream.layouts) {
            std::vector<std::string> own;
            if (layout.found.layout) {
                for (ChannelMeaning const& meaning : meaningsOf(*layout.found.layout)) {
                    own.push_back(meaning.name);
                }
            }
            names = !names || *names == own ? own : std::vector<std::string>();
        }
    }
    form.channels = channelsOf(options, samples.mostChannels());
    form.names = names.value_or(std::vector<std::string>());
    return form;
}

/// The factors of a layout's channels; empty for raw counts.
std::vector<ChannelScale> scalesOf(SamplesOptions const& options, FoundLayout const& layout) {
    std::vector<ChannelScale> scales;
    if (!layout.layout) {
        return scales;
    }
    std::size_t const channels = layout.layout->channels().size();
    auto const& given = options.choice.scales;
    if (!given.empty()) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            std::size_t const place = given.size() == 1 ? 0 : channel;
            scales.push_back(place < given.size() ? ChannelScale::of(given[place])
                                                  : ChannelScale());
        }
    } else if (options.isScaled) {
        for (ChannelMeaning const& meaning : meaningsOf(*layout.layout)) {
            scales.push_back(meaning.scale);
        }
    }
    return scales;
}

/// Writes the samples of one stream after the other.
class SampleList {
public:
    SampleList(CommandRun& run, SamplesOptions const& options)
        : run_(run),
          options_(options),
          samples_(run, options.choice),
          form_(formOf(options, samples_)),
          writer_(
              run.rowWriter(chooseColumns(sampleRowLayout(form_), options.choice.common.columns))) {
    }

    ExitStatus write() {
        noteTwoPublishers();
        std::uint64_t all = 0;
        for (WantedStream const& stream : samples_.streams()) {
            all += stream.stream->packets;
        }
        ProgressBar bar = run_.writingBar(all);
        bar.startFile("writing", all);
        for (WantedStream const& stream : samples_.streams()) {
            writeStream(stream, bar);
        }
        bar.erase();
        writer_.finish();
        if (options_.limit != 0U) {
            samples_.noteIfNone(rows_);
        }
        run_.writeSummary(summary());
        return run_.finish();
    }

private:
    void writeStream(WantedStream const& stream, ProgressBar& bar) {
        if (isFull()) {
            return;
        }
        SampleNotes notes(
            *stream.stream, [&](std::uint32_t file) -> auto const& { return fileName(file); },
            [&](std::string const& text) {
                bar.erase();
                complain(text);
            });
        noteNoScale(stream);
        std::uint64_t ofStream = 0;
        SampleRows const rows =
            options_.withMissing ? SampleRows::everySample : SampleRows::received;
        auto const counts = samples_.visit(stream, rows, [&](SampleBlock const& block) {
            notes.look(block);
            noteMoreChannels(block);
            auto const scales = scalesOf(options_, block.layout);
            SampleRow row{.stream = stream.stream, .block = &block, .scales = &scales};
            for (row.row = 0; row.row < block.size() && !isFull(); ++row.row) {
                bar.countOne();
                if (ofStream++ % options_.every == 0) {
                    row.file = &fileName(block.places[row.row].file);
                    writeRow(row);
                }
            }
            return !isFull();
        });
        notes.finish(counts);
        streams_ += ofStream == 0 ? 0 : 1;
    }

    void writeRow(SampleRow& row) {
        if (!form_.isLong || row.isMissing() || row.isOctets()) {
            row.channel = 0;
            writer_.write(row);
            ++rows_;
            return;
        }
        for (std::size_t const channel : form_.channels) {
            if (channel < row.block->channels.size() && !isFull()) {
                row.channel = channel;
                writer_.write(row);
                ++rows_;
            }
        }
    }

    [[nodiscard]] bool isFull() const { return options_.limit && rows_ >= *options_.limit; }

    [[nodiscard]] std::string const& fileName(std::uint32_t file) const {
        return samples_.fileName(file);
    }

    /// Two sources of one svID are two streams, and mostly a mistake.
    void noteTwoPublishers() {
        std::map<std::string, std::vector<std::string>> sources;
        for (WantedStream const& stream : samples_.streams()) {
            auto const& key = stream.stream->key;
            auto& known = sources[key.name];
            std::string const source = key.source ? toText(*key.source) : "an unknown source";
            if (std::find(known.begin(), known.end(), source) == known.end()) {
                known.push_back(source);
            }
        }
        for (auto const& [svID, known] : sources) {
            if (known.size() > 1) {
                complain(fmt::format(
                    "{}: sent by {} and {}: each is a stream of its own", escapeText(svID),
                    known[0], known.size() == 2 ? known[1] : plural(known.size() - 1, "other")));
            }
        }
    }

    void noteNoScale(WantedStream const& stream) {
        if (!options_.isScaled || !options_.choice.scales.empty()) {
            return;
        }
        for (auto const& layout : stream.layouts) {
            if (!layout.found.layout || meaningsOf(*layout.found.layout).empty()) {
                complain(fmt::format("{}: units of {} are not known: raw counts; see --scale",
                                     escapeText(stream.stream->key.name),
                                     layoutText(layout.found, layout.dataSize)));
            }
        }
    }

    /// The columns are those of what was looked at first.
    void noteMoreChannels(SampleBlock const& block) {
        bool const isMore = !form_.isLong && options_.choice.channels.empty() &&
                            block.channels.size() > form_.channels.size();
        if (isMore && !isMoreTold_) {
            isMoreTold_ = true;
            complain(fmt::format("{}@{}: samples have {}, of which {} are written",
                                 escapeText(fileName(block.places[0].file)),
                                 block.places[0].fileOffset,
                                 plural(block.channels.size(), "channel"), form_.channels.size()));
        }
    }

    [[nodiscard]] std::string summary() const {
        return fmt::format("{} of {} in {}{}", plural(rows_, "row"), plural(streams_, "stream"),
                           plural(run_.captures().size(), "file"),
                           isFull() ? "; more may be there" : "");
    }

    CommandRun& run_;
    SamplesOptions const& options_;
    WantedSamples samples_;
    SampleForm form_;
    RowWriter<SampleRow> writer_;
    std::uint64_t rows_ = 0;
    std::uint64_t streams_ = 0;
    bool isMoreTold_ = false;
};

ExitStatus runSamples(SamplesOptions const& options) {
    options.choice.check();
    CommandRun run(options.choice.common);
    SampleList list(run, options);
    return list.write();
}

std::uint64_t toPositive(std::string const& option, std::string const& text) {
    auto const number = readNumber(text, 10, std::uint64_t{1} << 62U);
    if (!number || *number == 0) {
        refuseValue(option, text, "a number from 1");
    }
    return *number;
}

}  // namespace

void addSamplesCommand(ProgramDefinition& program, Action& chosen) {
    auto const options = std::make_shared<SamplesOptions>();
    CommandDefinition& command =
        addCommand(program, "samples", "List the samples of SV streams, with the times of each.");
    addCommonOptions(command, options->choice.common);
    addSampleChoice(command, options->choice);
    command.parser->add_flag("--long", options->isLong, "A row for each channel");
    command.parser->add_flag("--missing", options->withMissing, "Rows for samples that never came");
    command.parser->add_flag("--scaled", options->isScaled,
                             "Amperes and volts where samples are those of 9-2LE");
    command.parser
        ->add_option_function<std::string>(
            "--every",
            [options](std::string const& text) { options->every = toPositive("--every", text); },
            "Each Nth row of a stream, from its first")
        ->option_text("N");
    addLimitOption(command, options->limit);
    command.notes = samplesNotes();
    command.examples = {"tal-iec61850 samples --svid MU01 --around 10:00:00.28 bay1.pcap",
                        "tal-iec61850 samples --scaled --missing -f csv -o bay1.csv bay1.pcap",
                        "tal-iec61850 samples --layout float32,quality -f json bay1.pcap"};
    command.parser->callback(
        [options, &chosen] { chosen = [options] { return runSamples(*options); }; });
}

}  // namespace TalIec61850Tools
