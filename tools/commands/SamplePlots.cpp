#include "tools/commands/SamplePlots.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/pictures/StreamPicture.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/SampleStreamNotes.hpp"
#include "tools/commands/WantedSamples.hpp"
#include "tools/output/Complain.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WithCommas.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/AddressText.hpp"
#include "tools/render/DurationText.hpp"
#include "tools/render/PictureChannels.hpp"
#include "tools/render/PictureNames.hpp"
#include "tools/render/SampleNotes.hpp"
#include "tools/render/UtcText.hpp"
#include "tools/terminal/HeadLine.hpp"
#include "tools/terminal/SparklineRows.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleExtent;
using TalIec61850Analysis::SampleRows;
using TalIec61850Analysis::StreamPicture;
using TalIec61850Analysis::StreamPictureBuilder;
using TalIec61850Analysis::StreamPictureOptions;

namespace {

/// The ends of a window, as far as they are inside of what was captured: elsewhere the first sample
/// and the last one are the ends of a picture.
struct PlottedWindow {
    std::optional<CaptureTime> from;
    std::optional<CaptureTime> end;
};

/// "200 ms from ...", "8,000 samples", "0 missing".
std::vector<std::string> wordsOf(SampleExtent const& extent) {
    std::vector<std::string> words;
    if (extent.first != kNoTime) {
        words.push_back(durationText(extent.first, extent.last) + " from " +
                        toUtcText(captureTimeOf(extent.first)));
    }
    words.push_back(withCommas(extent.received) + (extent.received == 1 ? " sample" : " samples"));
    words.push_back(withCommas(extent.missing) + " missing");
    return words;
}

/// Draws the streams of a run.
class SamplePlots {
public:
    SamplePlots(CommandRun& run, SampleChoice const& choice, bool isScaled)
        : run_(run),
          choice_(choice),
          isScaled_(isScaled),
          samples_(run, choice),
          form_(run.textForm()) {
        auto const options = samples_.options(SampleRows::everySample);
        CaptureSpan const captured = spanOf(samples_.index());
        window_.from = options.from > captured.begin ? options.from : std::nullopt;
        window_.end = options.end && *options.end <= captured.end ? options.end : std::nullopt;
        for (std::size_t const channel : choice.channels) {
            channels_.push_back(channel - 1);
        }
    }

    ExitStatus draw() {
        static_cast<void>(samples_.mostChannels());
        noteTwoPublishers(samples_);
        for (WantedStream const& stream : samples_.streams()) {
            drawStream(stream);
        }
        samples_.noteIfNone(drawnStreams_);
        run_.writeSummary(wrapText(summary(), form_.columns));
        return run_.finish();
    }

private:
    void drawStream(WantedStream const& stream) {
        if (isScaled_ && choice_.scales.empty()) {
            noteNoScale(stream);
        }
        SampleNotes notes(
            *stream.stream,
            [&](std::uint32_t file) -> auto const& { return samples_.fileName(file); },
            [](std::string const& text) { complain(text); });
        StreamPictureBuilder picture(options());
        notes.finish(samples_.visit(stream, SampleRows::everySample, [&](SampleBlock const& block) {
            notes.look(block);
            picture.add(block);
            return true;
        }));
        if (picture.extent().received > 0) {
            write(stream, picture.take());
        }
    }

    [[nodiscard]] StreamPictureOptions options() const {
        std::size_t const columns = kColumnsForDots * form_.columns;
        StreamPictureOptions options;
        options.samples.from = window_.from;
        options.samples.end = window_.end;
        options.channels = channels_;
        options.columns = columns;
        options.fewestColumns = columns;
        options.mostSamples = columns;
        return options;
    }

    void write(WantedStream const& stream, StreamPicture picture) {
        auto const& key = stream.stream->key;
        std::vector<std::string> words = wordsOf(picture.extent);
        if (key.source) {
            words.insert(words.begin(), toText(*key.source));
        }
        std::string text = drawnStreams_ == 0 ? "" : "\n";
        text += headLine(PictureNames().of(*stream.stream), words, form_);
        SparklinePicture plotted = withEnds(std::move(picture));
        auto const& envelopes = plotted.picture.envelopes;
        bool const areScaled = isScaled_ || !choice_.scales.empty();
        std::vector<double> const asSent = {1.0};
        plotted.channels = pictureChannels(envelopes.channelNumbers, plotted.picture.extent.layout,
                                           stream.described, areScaled ? choice_.scales : asSent);
        if (plotted.channels.empty() || envelopes.channelsOfStream == 0) {
            text += headLine("What its samples are made of is not known: see --layout.", {},
                             {.columns = form_.columns, .isUtf8 = form_.isUtf8});
        } else if (plotted.from == kNoTime) {
            text += headLine("Its samples have no time.", {},
                             {.columns = form_.columns, .isUtf8 = form_.isUtf8});
        } else {
            text += sparklineRows(plotted, form_);
        }
        if (channels_.empty() && envelopes.channelsOfStream > plotted.channels.size()) {
            text += plural(envelopes.channelsOfStream - plotted.channels.size(), "more channel") +
                    ": see --channels\n";
        }
        run_.sink()(text);
        run_.flush();
        ++drawnStreams_;
        drawnChannels_ += plotted.channels.size();
    }

    /// Without channels yet.
    [[nodiscard]] SparklinePicture withEnds(StreamPicture picture) const {
        auto const ofWindow = [](std::optional<CaptureTime> const& time, std::int64_t otherwise) {
            return time ? nanosecondsOf(*time) : otherwise;
        };
        std::int64_t const last = picture.extent.last;
        SparklinePicture plotted;
        plotted.from = ofWindow(window_.from, picture.extent.first);
        plotted.end = ofWindow(window_.end, last == kNoTime ? last : afterTime(last));
        plotted.picture = std::move(picture);
        return plotted;
    }

    [[nodiscard]] std::string summary() const {
        std::size_t const empty = samples_.streams().size() - drawnStreams_;
        return fmt::format(
            "{} of {} in {}{}", plural(drawnChannels_, "channel"), plural(drawnStreams_, "stream"),
            plural(run_.captures().size(), "file"),
            empty == 0 ? "" : fmt::format("; {} without samples", plural(empty, "stream")));
    }

    CommandRun& run_;
    SampleChoice const& choice_;
    bool isScaled_;
    WantedSamples samples_;
    TextForm form_;
    PlottedWindow window_;
    /// From 0; empty for all.
    std::vector<std::size_t> channels_;
    std::size_t drawnStreams_ = 0;
    std::size_t drawnChannels_ = 0;
};

}  // namespace

ExitStatus plotSamples(CommandRun& run, SampleChoice const& choice, bool isScaled) {
    return SamplePlots(run, choice, isScaled).draw();
}

}  // namespace TalIec61850Tools
