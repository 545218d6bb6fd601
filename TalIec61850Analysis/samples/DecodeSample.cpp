#include <TalIec61850Analysis/samples/ChannelDecoder.hpp>
#include <TalIec61850Analysis/samples/DecodeSample.hpp>

namespace TalIec61850Analysis {

std::vector<SampleValue> decodeSample(SampleLayout const& layout, Octets seqData) {
    std::vector<SampleValue> sample;
    if (seqData.size() != layout.size()) {
        return sample;
    }
    std::vector<ChannelColumn> columns;
    for (SampleChannel const& channel : layout.channels()) {
        columns.push_back({.values = detail::noValues(channel.valueType()), .qualities = {}});
    }
    detail::ChannelDecoder(layout, columns, 1).decode(seqData.data(), 0);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        ChannelColumn const& column = columns[i];
        SampleValue value;
        std::visit([&](auto const& values) { value.value = values.front(); }, column.values);
        if (!column.qualities.empty()) {
            value.quality = SampleQuality{column.qualities.front()};
        }
        if (auto const offset = layout.channels()[i].timeOffset) {
            value.time = readUtcTime(seqData.subspan(*offset, kUtcTimeSize));
        }
        sample.push_back(value);
    }
    return sample;
}

}  // namespace TalIec61850Analysis
