#include "tools/commands/SamplesCommand.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/commands/SamplePlots.hpp"
#include "tools/commands/SampleStreamNotes.hpp"
#include "tools/commands/SamplesSummary.hpp"
#include "tools/commands/WantedSamples.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/LimitOption.hpp"
#include "tools/options/NameOptions.hpp"
#include "tools/options/RefuseRowOptions.hpp"
#include "tools/options/RepeatableOption.hpp"
#include "tools/options/SampleOptions.hpp"
#include "tools/options/StreamOptions.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/Complain.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/SampleNotes.hpp"
#include "tools/render/SampleRow.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::FoundLayout;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleRows;

namespace {

/// What `samples` is asked for.
struct SamplesOptions {
    SampleChoice choice;
    bool isSummary = false;
    bool isLong = false;
    bool withMissing = false;
    bool isScaled = false;
    /// A picture in place of rows.
    bool isPlot = false;
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
               "a count; with --scl, the units that are described. --scale gives units by factors "
               "of your own.") +
           "\n" +
           paragraph(std::string(kNameNotes) +
                     " Samples are read as they are described, unless --layout says otherwise, and "
                     "columns have the names of channels where these are the same in all "
                     "streams.") +
           "\n" + kTimeNotes + "\n" + paragraph(kContentNotes) + "\n" +
           paragraph(
               "--plot draws each channel on two lines, as high as its least and its largest "
               "value, which are in front, with a line at zero: what was sampled in a column is "
               "between the least and the largest dot. Shaded: samples are missing. Marks below: "
               "where samples are missing, and where their quality is not good. Where the locale "
               "has no UTF-8, curves are of ASCII. Elsewhere than on a terminal they are 80 "
               "columns wide, or what COLUMNS says.") +
           "\n" +
           paragraph("The fields of json: " + fields +
                     ". csv has the same up to missing, then value1, quality1, value2 and so on, "
                     "or names where they are known: Ia, Ia.quality. With --long there is a row "
                     "for each channel: channel, name, value, quality, qualityText.") +
           "\n" + samplesSummaryNotes();
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

/// The names that channels have in all streams that have them; none where any stream has none.
std::vector<std::string> commonNames(WantedSamples const& samples) {
    std::vector<std::string> names;
    for (WantedStream const& stream : samples.streams()) {
        for (auto const& layout : stream.layouts) {
            std::vector<ChannelMeaning> const none;
            auto const& own = layout.found.layout ? stream.meanings(*layout.found.layout) : none;
            if (own.empty()) {
                return {};
            }
            for (std::size_t channel = 0; channel < layout.found.layout->channels().size();
                 ++channel) {
                std::string const name = channel < own.size() ? own[channel].name : std::string();
                if (channel == names.size()) {
                    names.push_back(name);
                } else if (names[channel] != name) {
                    names[channel].clear();
                }
            }
        }
    }
    return names;
}

SampleForm formOf(SamplesOptions const& options, WantedSamples const& samples) {
    SampleForm form;
    form.format = options.choice.common.format;
    form.isLong = options.isLong;
    form.hasFieldPerChannel = !options.choice.common.columns.empty();
    form.channels = channelsOf(options, samples.mostChannels());
    form.areChosen = !options.choice.channels.empty();
    form.names = commonNames(samples);
    return form;
}

/// The factors of a layout's channels; empty for raw counts.
std::vector<std::optional<ChannelScale>> scalesOf(SamplesOptions const& options,
                                                  WantedStream const& stream,
                                                  FoundLayout const& layout) {
    std::vector<std::optional<ChannelScale>> scales;
    if (!layout.layout) {
        return scales;
    }
    std::size_t const channels = layout.layout->channels().size();
    auto const& given = options.choice.scales;
    if (!given.empty()) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            std::size_t const place = given.size() == 1 ? 0 : channel;
            scales.emplace_back(place < given.size() ? ChannelScale::of(given[place])
                                                     : ChannelScale());
        }
    } else if (options.isScaled) {
        for (ChannelMeaning const& meaning : stream.meanings(*layout.layout)) {
            bool const isAsItIs = meaning.scale == ChannelScale();
            scales.push_back(isAsItIs ? std::nullopt : meaning.scale);
        }
        scales.resize(scales.empty() ? 0 : channels);  // those that are not described are counts
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
        noteTwoPublishers(samples_);
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
        if (options_.isScaled && options_.choice.scales.empty()) {
            noteNoScale(stream);
        }
        std::uint64_t ofStream = 0;
        SampleRows const rows =
            options_.withMissing ? SampleRows::everySample : SampleRows::received;
        auto const counts = samples_.visit(stream, rows, [&](SampleBlock const& block) {
            notes.look(block);
            noteMoreChannels(block);
            auto const scales = scalesOf(options_, stream, block.layout);
            SampleRow row{.stream = stream.stream, .block = &block, .scales = &scales};
            if (block.layout.layout) {
                row.meanings = &stream.meanings(*block.layout.layout);
            }
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
        visitChannels(form_, row, [&](std::size_t channel) {
            if (!isFull()) {
                row.channel = channel;
                writer_.write(row);
                ++rows_;
            }
        });
    }

    [[nodiscard]] bool isFull() const { return options_.limit && rows_ >= *options_.limit; }

    [[nodiscard]] std::string const& fileName(std::uint32_t file) const {
        return samples_.fileName(file);
    }

    /// The columns are those of what was looked at first.
    void noteMoreChannels(SampleBlock const& block) {
        bool const hasColumns = form_.format != Format::json || form_.hasFieldPerChannel;
        bool const isMore = hasColumns && !form_.isLong && !form_.areChosen &&
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

ExitStatus runSamples(SamplesOptions const& options, CLI::App const& parser) {
    if (options.isPlot) {
        refuseRowOptions(parser, "--plot",
                         {"--long", "--missing", "--every", "--limit", "--summary"});
    }
    options.choice.check();
    checkNameOptions(options.choice.common, options.choice.criteria);
    if (options.isSummary) {
        if (options.isLong || options.withMissing || options.isScaled || options.every != 1 ||
            options.limit) {
            throw UsageError(
                "--summary has no rows of samples: it takes no --long, --missing, --scaled, "
                "--every and --limit");
        }
        return writeSamplesSummary(options.choice);
    }
    CommandRun run(options.choice.common);
    if (options.isPlot) {
        return plotSamples(run, options.choice, options.isScaled);
    }
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
    addNameOptions(command, options->choice.common, options->choice.criteria);
    command.parser->add_flag("--summary", options->isSummary,
                             "A row for each stream, in place of samples: layout, rate, times, "
                             "residuals of arrival, counts");
    command.parser->add_flag("--long", options->isLong, "A row for each channel");
    command.parser->add_flag("--missing", options->withMissing, "Rows for samples that never came");
    command.parser->add_flag("--scaled", options->isScaled,
                             "Amperes and volts where samples are those of 9-2LE; with --scl, the "
                             "units that are described");
    command.parser
        ->add_option_function<std::string>(
            "--every",
            [options](std::string const& text) { options->every = toPositive("--every", text); },
            "Each Nth row of a stream, from its first")
        ->option_text("N");
    addLimitOption(command, options->limit);
    command.parser->add_flag("--plot", options->isPlot,
                             "Curves of channels in place of rows, as wide as the terminal");
    command.notes = samplesNotes();
    command.examples = {"tal-iec61850 samples --svid MU01 --around 10:00:00.28 bay1.pcap",
                        "tal-iec61850 samples --scaled --missing -f csv -o bay1.csv bay1.pcap",
                        "tal-iec61850 samples --layout float32,quality -f json bay1.pcap",
                        "tal-iec61850 samples --plot --scaled --around 10:00:00.28 bay1.pcap",
                        "tal-iec61850 samples --summary bay1.pcap"};
    command.parser->callback([options, &chosen, parser = command.parser] {
        chosen = [options, parser] { return runSamples(*options, *parser); };
    });
}

}  // namespace TalIec61850Tools
