#include "tools/report/PageStream.hpp"

#include <TalIec61850Analysis/packet/SampleQuality.hpp>
#include <TalIec61850Analysis/pictures/EnvelopeBuilder.hpp>
#include <TalIec61850Analysis/pictures/MeasureCycle.hpp>
#include <TalIec61850Analysis/pictures/SampleSpans.hpp>
#include <TalIec61850Analysis/pictures/StreamPicture.hpp>
#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "tools/render/PictureChannels.hpp"
#include "tools/render/QualityText.hpp"
#include "tools/report/ArrivalPicture.hpp"
#include "tools/report/PictureSegments.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureTime;
using TalIec61850Analysis::captureTimeOf;
using TalIec61850Analysis::EnvelopeBuilder;
using TalIec61850Analysis::EnvelopeOptions;
using TalIec61850Analysis::Envelopes;
using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleExtent;
using TalIec61850Analysis::SampleReader;
using TalIec61850Analysis::SampleRows;
using TalIec61850Analysis::SampleSpan;
using TalIec61850Analysis::SampleSpanBuilder;
using TalIec61850Analysis::SampleSpans;
using TalIec61850Analysis::SpanOptions;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficStream;
using TalIec61850Analysis::Waveform;
using TalIec61850Analysis::WaveformBuilder;

namespace {

using Json = nlohmann::ordered_json;

/// Columns of residuals and of distances of arrival.
constexpr std::size_t kArrivalColumns = 4096;
constexpr std::size_t kUsualColumns = 8192;

CaptureTime instant(std::int64_t time) { return captureTimeOf(time); }

/// What is told of a stream besides its values.
class StreamTeller {
public:
    StreamTeller(TrafficStream const& stream, PageStreamWish const& wish, PictureNames const& names,
                 std::size_t arrivalColumns)
        : stream_(stream),
          wish_(wish),
          names_(names),
          spans_(SpanOptions{.mostSpans = wish.mostSpans, .channels = wish.channels}),
          arrival_(wish.samples, arrivalColumns) {}

    void add(SampleBlock const& block) {
        spans_.add(block);
        arrival_.add(block);
        extent_.add(block);
    }

    /// @param segments  whose octets are in the picture already
    void finish(PageStream& picture, Json segments, std::optional<double> frequency) {
        picture.received = extent_.received;
        picture.missing = extent_.missing;
        picture.first = extent_.first;
        picture.last = extent_.last;
        SampleSpans const spans = spans_.take();
        picture.channels = spans.channelNumbers.size();
        picture.channelsOfStream = spans.channelsOfStream;
        if (picture.channels == 0 || segments.empty()) {
            return;
        }
        Json& told = picture.told;
        told["name"] = names_.of(stream_);
        told["frequency"] = frequency ? Json(*frequency) : Json();
        told["channels"] = channels(spans.channelNumbers);
        told["qualities"] = qualities(spans);
        told["missing"] = spansOf(spans.missing);
        Json bad = Json::array();
        for (auto const& channel : spans.qualities) {
            bad.push_back(spansOf(channel));
        }
        told["bad"] = std::move(bad);
        told["segments"] = std::move(segments);
        Json arrivals = envelopeSegments(picture.octets, arrival_.take());
        if (!arrivals.empty()) {
            Json const microseconds = {
                {"name", ""}, {"unit", "us"}, {"phase", ""}, {"factor", 1000}, {"divides", true}};
            told["arrival"] = {{"channels", {microseconds, microseconds}},
                               {"missing", Json::array()},
                               {"bad", Json::array()},
                               {"segments", std::move(arrivals)}};
        }
    }

private:
    [[nodiscard]] Json channels(std::vector<std::size_t> const& numbers) const {
        Json list = Json::array();
        for (PictureChannel const& channel :
             pictureChannels(numbers, extent_.layout, wish_.described, wish_.scales)) {
            list.push_back({{"name", channel.name},
                            {"unit", channel.unit},
                            {"phase", channel.phase},
                            {"factor", channel.scale.factor},
                            {"divides", channel.scale.divides},
                            {"offset", channel.scale.offset}});
        }
        return list;
    }

    /// The words that spans have, in words.
    [[nodiscard]] static Json qualities(SampleSpans const& spans) {
        std::set<std::uint32_t> words;
        for (auto const& channel : spans.qualities) {
            for (SampleSpan const& span : channel) {
                words.insert(span.quality);
            }
        }
        Json texts = Json::object();
        for (std::uint32_t const word : words) {
            texts[std::to_string(word)] = toText(TalIec61850Analysis::SampleQuality{word});
        }
        return texts;
    }

    [[nodiscard]] Json spansOf(std::vector<SampleSpan> const& spans) const {
        Json list = Json::array();
        for (SampleSpan const& span : spans) {
            list.push_back({span.from - wish_.from, span.to - wish_.from, span.quality});
        }
        return list;
    }

    TrafficStream const& stream_;
    PageStreamWish const& wish_;
    PictureNames const& names_;
    SampleSpanBuilder spans_;
    ArrivalPicture arrival_;
    SampleExtent extent_;
};

template <typename Take>
void readBlocks(TrafficIndex const& index, TrafficStream const& stream, PageStreamWish const& wish,
                Take const& take) {
    auto options = wish.samples;
    options.rows = SampleRows::everySample;
    SampleReader reader(index, stream, options);
    while (SampleBlock const* const block = reader.next()) {
        if (!wish.admits || wish.admits(*block)) {
            take(*block);
        }
    }
}

/// That of the first whole cycles in the middle, at the end or at the start.
std::optional<double> frequencyOf(Waveform const& waveform) {
    if (waveform.size() == 0) {
        return std::nullopt;
    }
    std::size_t const last = waveform.size() - 1;
    for (std::size_t const row : {last / 2, last, last / 4, last / 8, last / 16, last * 3 / 4}) {
        if (waveform.times[row] == kNoTime) {
            continue;
        }
        auto const reading = measureCycleAt(waveform, instant(waveform.times[row]));
        if (reading) {
            return reading->frequency;
        }
    }
    return std::nullopt;
}

std::size_t channelsOf(SampleBlock const& block, PageStreamWish const& wish) {
    return std::max<std::size_t>(
        1, wish.channels.empty() ? block.channels.size() : wish.channels.size());
}

}  // namespace

PageStream drawSamples(TrafficIndex const& index, TrafficStream const& stream,
                       PageStreamWish const& wish, PictureNames const& names) {
    StreamTeller teller(stream, wish, names, kArrivalColumns);
    std::optional<WaveformBuilder> builder;
    readBlocks(index, stream, wish, [&](SampleBlock const& block) {
        if (!builder) {
            builder.emplace(wish.mostValues / channelsOf(block, wish), wish.channels);
        }
        builder->add(block);
        teller.add(block);
    });
    PageStream picture;
    if (!builder) {
        return picture;
    }
    auto const coarser = [&] {
        PageStream columns = drawColumns(index, stream, wish, names, kUsualColumns);
        columns.isOverMemory = true;
        return columns;
    };
    if (builder->waveform().isTooLong) {
        return coarser();
    }
    Waveform const waveform = builder->take();
    auto segments = waveformSegments(picture.octets, waveform);
    if (!segments) {
        return coarser();
    }
    picture.hasSamples = true;
    teller.finish(picture, *std::move(segments), frequencyOf(waveform));
    return picture;
}

PageStream drawColumns(TrafficIndex const& index, TrafficStream const& stream,
                       PageStreamWish const& wish, PictureNames const& names, std::size_t columns) {
    StreamTeller teller(stream, wish, names, std::min(columns, kArrivalColumns));
    EnvelopeBuilder builder(EnvelopeOptions{.from = wish.samples.from,
                                            .end = wish.samples.end,
                                            .columns = columns,
                                            .fewestColumns = columns,
                                            .channels = wish.channels});
    readBlocks(index, stream, wish, [&](SampleBlock const& block) {
        builder.add(block);
        teller.add(block);
    });
    PageStream picture;
    Envelopes const envelopes = builder.take();
    if (!envelopes.levels.empty()) {
        picture.columns = envelopes.levels[0].size();
        picture.columnWidth = envelopes.levels[0].width;
    }
    Json segments = envelopeSegments(picture.octets, envelopes);
    teller.finish(picture, std::move(segments), std::nullopt);
    return picture;
}

}  // namespace TalIec61850Tools
