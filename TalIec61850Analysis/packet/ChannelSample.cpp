#include <TalIec61850Analysis/packet/ChannelSample.hpp>
#include <TalIec61850Parser/wire/SvTags.hpp>

namespace TalIec61850Analysis {

namespace wire = TalIec61850Parser::wire;

bool SamplesView::holdsChannels() const noexcept { return octets_.size() % wire::kSampleSize == 0; }

std::size_t SamplesView::size() const noexcept {
    return holdsChannels() ? octets_.size() / wire::kSampleSize : 0;
}

ChannelSample SamplesView::operator[](std::size_t index) const noexcept {
    Octets const sample = octets_.subspan(index * wire::kSampleSize, wire::kSampleSize);
    auto const value = wire::readBigEndian<std::uint32_t>(sample);
    auto const quality = wire::readBigEndian<std::uint32_t>(sample.subspan(sizeof value));
    return {.value = static_cast<std::int32_t>(value), .quality = {quality}};
}

SequenceOfData toOwned(SamplesView const& samples) {
    if (!samples.holdsChannels()) {
        return toOwned(samples.octets());
    }
    std::vector<ChannelSample> channels;
    channels.reserve(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        channels.push_back(samples[i]);
    }
    return channels;
}

}  // namespace TalIec61850Analysis
