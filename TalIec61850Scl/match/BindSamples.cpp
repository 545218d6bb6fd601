#include <TalIec61850Scl/match/BindMembers.hpp>
#include <utility>

namespace TalIec61850Scl {

namespace {

using TalIec61850Analysis::SampleLayout;
using TalIec61850Analysis::SampleType;

std::optional<SampleType> sampleTypeOf(BasicType type) {
    switch (type) {
        case BasicType::boolean:
            return SampleType::boolean;
        case BasicType::int8:
            return SampleType::int8;
        case BasicType::int16:
            return SampleType::int16;
        case BasicType::int24:
            return SampleType::int24;
        case BasicType::int32:
            return SampleType::int32;
        case BasicType::int64:
            return SampleType::int64;
        case BasicType::int8u:
            return SampleType::int8u;
        case BasicType::int16u:
            return SampleType::int16u;
        case BasicType::int24u:
            return SampleType::int24u;
        case BasicType::int32u:
            return SampleType::int32u;
        case BasicType::float32:
            return SampleType::float32;
        case BasicType::float64:
            return SampleType::float64;
        case BasicType::enumerated:
            return SampleType::enumerated;
        case BasicType::quality:
            return SampleType::quality;
        case BasicType::timestamp:
            return SampleType::timestamp;
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<std::size_t> sampleSize(DataSet const& dataSet) {
    std::size_t size = 0;
    for (DataSetMember const& member : dataSet.members) {
        auto const type = sampleTypeOf(member.type);
        if (!type) {
            return std::nullopt;
        }
        size += sizeOf(*type);
    }
    return size;
}

std::size_t leastSampleSize(DataSet const& dataSet) {
    std::size_t size = 0;
    for (DataSetMember const& member : dataSet.members) {
        auto const type = sampleTypeOf(member.type);
        size += type ? sizeOf(*type) : 0;
    }
    return size;
}

std::optional<SampleBinding> bindSamples(DataSet const& dataSet, std::size_t size) {
    auto const whole = sampleSize(dataSet);
    if (whole ? *whole != size : leastSampleSize(dataSet) > size) {
        return std::nullopt;
    }
    SampleBinding binding;
    std::vector<SampleType> types;
    types.reserve(dataSet.members.size());
    std::size_t rest = size;
    for (DataSetMember const& member : dataSet.members) {
        auto const type = sampleTypeOf(member.type);
        if (!type) {
            break;
        }
        if (*type != SampleType::quality && *type != SampleType::timestamp) {
            binding.channelMembers.push_back(types.size());
        }
        types.push_back(*type);
        rest -= sizeOf(*type);
    }
    binding.bound = types.size();
    if (binding.bound == 0 && !dataSet.members.empty()) {
        return std::nullopt;
    }
    binding.layout = SampleLayout(std::move(types), rest);
    return binding;
}

}  // namespace TalIec61850Scl
