#pragma once

// Pictures of text of samples and states that are told one by one.

#include <TalIec61850Analysis/pictures/EnvelopeBuilder.hpp>
#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <TalIec61850Analysis/pictures/SampleSpans.hpp>
#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "analysis/pictures/SampleBlocks.hpp"
#include "tools/terminal/SparklineRows.hpp"
#include "tools/terminal/TimelineRows.hpp"

namespace TalTest {

/// 2024-03-20T10:00:00Z
inline constexpr std::int64_t kPictureStart = 1'710'928'800'000'000'000;
inline constexpr std::int64_t kPictureMs = 1'000'000;

/// Samples in a window, called a, b and so on.
/// @param mostSamples  as many are in the picture themselves; of more, columns are
/// @param rate         samples a second
[[nodiscard]] inline TalIec61850Tools::SparklinePicture plainPicture(
    std::vector<PlainSample> const& samples, std::int64_t from, std::int64_t end,
    std::size_t mostSamples = 1000, std::uint32_t rate = 1000) {
    using namespace TalIec61850Analysis;
    constexpr std::size_t kColumns = 1280;
    auto const at = [](std::int64_t time) { return captureTimeOf(time); };
    EnvelopeBuilder envelopes(EnvelopeOptions{
        .from = at(from), .end = at(end), .columns = kColumns, .fewestColumns = kColumns});
    SampleSpanBuilder spans;
    WaveformBuilder waveform(mostSamples);
    if (!samples.empty()) {
        auto const block = blockOf(samples, PlainType::float64, rate);
        envelopes.add(block);
        spans.add(block);
        waveform.add(block);
    }
    TalIec61850Tools::SparklinePicture picture;
    picture.picture.envelopes = envelopes.take();
    picture.picture.spans = spans.take();
    picture.picture.waveform = waveform.take();
    for (std::size_t i = 0; i < picture.picture.envelopes.channelNumbers.size(); ++i) {
        picture.channels.push_back({.name = std::string(1, static_cast<char>('a' + i)),
                                    .unit = "",
                                    .phase = "",
                                    .scale = {}});
    }
    picture.from = from;
    picture.end = end;
    return picture;
}

/// For some time, a value or something else that is known of it; times in milliseconds after
/// kPictureStart.
struct PlainInterval {
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::optional<TalIec61850Analysis::DataValue> value = {};
    TalIec61850Analysis::LaneState state = TalIec61850Analysis::LaneState::known;
};

[[nodiscard]] inline TalIec61850Analysis::MemberLane plainLane(
    std::vector<PlainInterval> const& intervals) {
    TalIec61850Analysis::MemberLane lane;
    for (PlainInterval const& each : intervals) {
        lane.intervals.push_back({.from = kPictureStart + each.from * kPictureMs,
                                  .to = kPictureStart + each.to * kPictureMs,
                                  .state = each.state,
                                  .value = each.value});
    }
    return lane;
}

/// A boolean, a double point of two bits, a number and a text, as GOOSE has them.
[[nodiscard]] inline TalIec61850Analysis::DataValue boolValue(bool isTrue) {
    return {.kind = TalIec61850Analysis::DataKind::boolean, .fault = {}, .value = isTrue};
}
[[nodiscard]] inline TalIec61850Analysis::DataValue positionValue(unsigned bits) {
    return {.kind = TalIec61850Analysis::DataKind::bitString,
            .fault = {},
            .value = TalIec61850Analysis::BitString{
                .octets = {static_cast<std::uint8_t>(bits << 6U)}, .unusedBits = 6}};
}
[[nodiscard]] inline TalIec61850Analysis::DataValue numberValue(std::int64_t number) {
    return {.kind = TalIec61850Analysis::DataKind::integer, .fault = {}, .value = number};
}
[[nodiscard]] inline TalIec61850Analysis::DataValue textValue(std::string const& text) {
    return {.kind = TalIec61850Analysis::DataKind::visibleString, .fault = {}, .value = text};
}

}  // namespace TalTest
