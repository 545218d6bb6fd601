#include "analysis/pictures/SampleBlocks.hpp"

#include <algorithm>
#include <cmath>
#include <variant>

namespace TalTest {

using namespace TalIec61850Analysis;

namespace {

ChannelValues noPlainValues(PlainType type) {
    switch (type) {
        case PlainType::int32:
            return std::vector<std::int32_t>();
        case PlainType::int64:
            return std::vector<std::int64_t>();
        case PlainType::float32:
            return std::vector<float>();
        default:
            return std::vector<double>();
    }
}

}  // namespace

SampleBlock blockOf(std::vector<PlainSample> const& samples, PlainType type, std::uint32_t rate) {
    SampleBlock block;
    block.run.rate.samples = rate;
    auto const first = std::find_if(samples.begin(), samples.end(),
                                    [](PlainSample const& one) { return !one.isMissing; });
    if (first != samples.end()) {
        block.channels.resize(first->values.size());
        for (ChannelColumn& channel : block.channels) channel.values = noPlainValues(type);
    }
    bool const haveQualities = first != samples.end() && !first->qualities.empty();
    for (PlainSample const& sample : samples) {
        block.sampleTimes.push_back(sample.time);
        block.timeSources.push_back(SampleTimeSource::smpCnt);
        block.arrivals.push_back(sample.isMissing ? kNoTime : sample.time);
        block.smpCnts.push_back(0);
        block.smpSynchs.push_back(2);
        block.states.push_back(sample.isMissing ? SampleState::missing : SampleState::received);
        block.places.emplace_back();
        for (std::size_t i = 0; i < block.channels.size(); ++i) {
            std::visit(
                [&](auto& values) {
                    using Value = typename std::remove_reference_t<decltype(values)>::value_type;
                    values.push_back(sample.isMissing ? Value{}
                                                      : static_cast<Value>(sample.values.at(i)));
                },
                block.channels[i].values);
            if (haveQualities) {
                block.channels[i].qualities.push_back(sample.isMissing ? 0
                                                                       : sample.qualities.at(i));
            }
        }
    }
    return block;
}

std::vector<PlainSample> plainSamples(std::int64_t firstTime, std::initializer_list<double> values,
                                      std::optional<std::uint32_t> quality) {
    std::vector<PlainSample> samples;
    for (double const value : values) {
        PlainSample sample{.time = firstTime + 1'000'000 * static_cast<int>(samples.size()),
                           .values = {value}};
        if (quality) sample.qualities = {*quality};
        samples.push_back(sample);
    }
    return samples;
}

}  // namespace TalTest
