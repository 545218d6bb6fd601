#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <utility>

namespace TalIec61850Analysis {

std::size_t sizeOf(SampleType type) noexcept {
    switch (type) {
        case SampleType::boolean:
        case SampleType::int8:
        case SampleType::int8u:
            return 1;
        case SampleType::int16:
        case SampleType::int16u:
            return 2;
        case SampleType::int24:
        case SampleType::int24u:
            return 3;
        case SampleType::int64:
        case SampleType::float64:
        case SampleType::timestamp:
            return 8;
        case SampleType::int32:
        case SampleType::int32u:
        case SampleType::float32:
        case SampleType::enumerated:
        case SampleType::quality:
            break;
    }
    return 4;
}

ValueType SampleChannel::valueType() const noexcept {
    switch (type) {
        case SampleType::int32u:
        case SampleType::int64:
            return ValueType::int64;
        case SampleType::float32:
            return ValueType::float32;
        case SampleType::float64:
            return ValueType::float64;
        default:
            return ValueType::int32;
    }
}

SampleLayout::SampleLayout(std::vector<SampleType> members, std::size_t rest)
    : members_(std::move(members)), rest_(rest) {
    // What may still follow the value that came last.
    bool mayHaveQuality = false;
    bool mayHaveTime = false;
    for (SampleType const member : members_) {
        if (member == SampleType::quality) {
            if (mayHaveQuality) {
                channels_.back().qualityOffset = size_;
                hasQuality_ = true;
            }
            mayHaveTime = std::exchange(mayHaveQuality, false);
        } else if (member == SampleType::timestamp) {
            if (mayHaveTime) {
                channels_.back().timeOffset = size_;
            }
            mayHaveQuality = false;
            mayHaveTime = false;
        } else {
            channels_.push_back({.type = member, .offset = size_, .qualityOffset = {}});
            mayHaveQuality = true;
            mayHaveTime = true;
        }
        size_ += sizeOf(member);
    }
    size_ += rest_;
}

}  // namespace TalIec61850Analysis
