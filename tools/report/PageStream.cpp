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
#include "tools/render/SampleDelay.hpp"
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

/// What the page has of a stream besides its values.
class StreamJson {
public:
    StreamJson(TrafficStream const& stream, PageStreamWish const& wish, PictureNames const& names)
        : stream_(stream),
          wish_(wish),
          names_(names),
          spans_(SpanOptions{.mostSpans = wish.mostSpans, .channels = wish.channels}),
          arrival_(wish.samples, kArrivalColumns) {}

    void add(SampleBlock const& block) {
        spans_.add(block);
        arrival_.add(block);
        extent_.add(block);
        delay_.add(block);
    }

    /// @param segments  whose octets are in the picture already
    void finish(PageStream& picture, Json segments, std::optional<double> frequency) {
        picture.received = extent_.received;
        picture.missing = extent_.missing;
        picture.first = extent_.first;
        picture.last = extent_.last;
        picture.delay = delay_.least();
        SampleSpans const spans = spans_.take();
        picture.channels = spans.channelNumbers.size();
        picture.channelsOfStream = spans.channelsOfStream;
        if (picture.channels == 0 || segments.empty()) {
            return;
        }
        Json& json = picture.json;
        json["name"] = names_.of(stream_);
        json["frequency"] = frequency ? Json(*frequency) : Json();
        std::vector<PictureChannel> const channels =
            pictureChannels(spans.channelNumbers, extent_.layout, wish_.described, wish_.scales);
        json["channels"] = jsonOf(channels);
        json["panels"] = panelsOf(channels);
        json["qualities"] = qualities(spans);
        json["missing"] = spansOf(spans.missing);
        Json bad = Json::array();
        for (auto const& channel : spans.qualities) {
            bad.push_back(spansOf(channel));
        }
        json["bad"] = std::move(bad);
        json["segments"] = std::move(segments);
        addArrivals(picture);
    }

private:
    void addArrivals(PageStream& picture) {
        Envelopes columns = arrival_.take();
        Json arrivals = envelopeSegments(picture.octets, columns);
        if (!picture.hasSamples) {
            picture.arrivals = std::move(columns);
        }
        if (!arrivals.empty()) {
            Json const microseconds = {
                {"name", ""}, {"unit", "us"}, {"factor", 1000}, {"divides", true}};
            picture.json["arrival"] = {{"channels", {microseconds, microseconds}},
                                       {"missing", Json::array()},
                                       {"bad", Json::array()},
                                       {"segments", std::move(arrivals)}};
        }
    }

    [[nodiscard]] static Json jsonOf(std::vector<PictureChannel> const& channels) {
        Json list = Json::array();
        for (std::size_t place = 0; place < channels.size(); ++place) {
            PictureChannel const& channel = channels[place];
            list.push_back({{"name", channel.name},
                            {"unit", channel.unit},
                            {"colour", channelColour(channel, place)},
                            {"factor", channel.scale.factor},
                            {"divides", channel.scale.divides},
                            {"offset", channel.scale.offset}});
        }
        return list;
    }

    /// Channels that share a chart, and what it is called.
    [[nodiscard]] static Json panelsOf(std::vector<PictureChannel> const& channels) {
        Json list = Json::array();
        for (std::vector<std::size_t> const& places : channelPanels(channels)) {
            std::string const& unit = channels[places.front()].unit;
            list.push_back({{"name", panelName(unit, unit)}, {"channels", places}});
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
    SampleDelay delay_;
};

/// @param take  whether to read on
template <typename Take>
void readBlocks(TrafficIndex const& index, TrafficStream const& stream, PageStreamWish const& wish,
                Take const& take) {
    auto options = wish.samples;
    options.rows = SampleRows::everySample;
    SampleReader reader(index, stream, options);
    while (SampleBlock const* const block = reader.next()) {
        bool const isWanted = !wish.admits || wish.admits(*block);
        if (isWanted && !take(*block)) {
            return;
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

void setColumns(PageStream& picture) {
    if (!picture.values.levels.empty()) {
        picture.columns = picture.values.levels.front().size();
        picture.columnWidth = picture.values.levels.front().width;
    }
}

void halve(Envelopes& envelopes) {
    if (!envelopes.levels.empty()) {
        envelopes.levels = {joinColumns(envelopes.levels.front())};
    }
}

}  // namespace

PageStream drawSamples(TrafficIndex const& index, TrafficStream const& stream,
                       PageStreamWish const& wish, PictureNames const& names) {
    StreamJson others(stream, wish, names);
    std::optional<WaveformBuilder> builder;
    readBlocks(index, stream, wish, [&](SampleBlock const& block) {
        if (!builder) {
            builder.emplace(wish.mostValues / channelsOf(block, wish), wish.channels);
        }
        builder->add(block);
        others.add(block);
        return !builder->waveform().isTooLong;
    });
    PageStream picture;
    if (!builder) {
        return picture;
    }
    auto const coarser = [&] {
        PageStream columns = drawColumns(index, stream, wish, names);
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
    others.finish(picture, *std::move(segments), frequencyOf(waveform));
    return picture;
}

PageStream drawColumns(TrafficIndex const& index, TrafficStream const& stream,
                       PageStreamWish const& wish, PictureNames const& names) {
    StreamJson others(stream, wish, names);
    EnvelopeBuilder builder(EnvelopeOptions{.from = wish.samples.from,
                                            .end = wish.samples.end,
                                            .columns = kUsualColumns,
                                            .fewestColumns = kUsualColumns,
                                            .channels = wish.channels});
    readBlocks(index, stream, wish, [&](SampleBlock const& block) {
        builder.add(block);
        others.add(block);
        return true;
    });
    PageStream picture;
    picture.values = builder.take();
    setColumns(picture);
    Json segments = envelopeSegments(picture.octets, picture.values);
    others.finish(picture, std::move(segments), std::nullopt);
    return picture;
}

void halveColumns(PageStream& picture) {
    halve(picture.values);
    setColumns(picture);
    auto const& ofArrival = picture.arrivals.levels;
    if (!ofArrival.empty() && ofArrival.front().size() > picture.columns) {
        halve(picture.arrivals);
    }
    picture.octets.clear();
    picture.json["segments"] = envelopeSegments(picture.octets, picture.values);
    if (picture.json.contains("arrival")) {
        picture.json["arrival"]["segments"] = envelopeSegments(picture.octets, picture.arrivals);
    }
}

}  // namespace TalIec61850Tools
