#include "tools/names/StreamNames.hpp"

#include <algorithm>
#include <system_error>
#include <utility>

#include "tools/names/ChannelNames.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;
using TalIec61850Scl::BindingEnd;
using TalIec61850Scl::ControlBlock;
using TalIec61850Scl::DataSet;

StreamNames::StreamNames(std::optional<TalIec61850Scl::StationDescription> station, Tell tell)
    : station_(std::move(station)), tell_(std::move(tell)) {
    if (station_) {
        publishers_.emplace(*station_);
    }
}

StreamNames::Known& StreamNames::knownOf(StreamKey const& stream) {
    auto const [found, isNew] = known_.try_emplace(stream);
    Known& known = found->second;
    if (!isNew || !station_) {
        return known;
    }
    known.controlBlock = publishers_->of(stream);
    if (known.controlBlock != nullptr) {
        auto const& dataSet = known.controlBlock->dataSet;
        known.dataSet = dataSet ? &station_->dataSets[*dataSet] : nullptr;
    }
    return known;
}

ControlBlock const* StreamNames::controlBlockOf(StreamKey const& stream) {
    return station_ ? knownOf(stream).controlBlock : nullptr;
}

DataSet const* StreamNames::dataSetOf(StreamKey const& stream) {
    return station_ ? knownOf(stream).dataSet : nullptr;
}

void StreamNames::tell(Known& known, NamesEnd const& end) {
    if (!known.isTold && tell_) {
        known.isTold = true;
        tell_(end);
    }
}

MemberNames StreamNames::namesOf(StreamKey const& stream, DataViews const& allData,
                                 NamedPlace const& place) {
    if (!station_) {
        return {};
    }
    Known& known = knownOf(stream);
    if (known.dataSet == nullptr) {
        return {};
    }
    if (!known.binder) {
        known.binder.emplace(*known.dataSet);
    }
    if (known.binder->bind(allData)) {
        auto const& binding = *known.binder->binding();
        // A message that a snap length cut is as it is described, as far as anyone knows.
        bool const isOther =
            binding.end != BindingEnd::none && binding.end != BindingEnd::notCaptured;
        if (isOther) {
            tell(
                known,
                {.stream = stream, .dataSet = *known.dataSet, .place = place, .binding = &binding});
        }
    }
    return {*known.dataSet, known.binder->binding()};
}

DescribedSamples const* StreamNames::samplesOf(StreamKey const& stream) {
    DataSet const* const dataSet = dataSetOf(stream);
    if (dataSet == nullptr) {
        return nullptr;
    }
    Known& known = knownOf(stream);
    if (!std::exchange(known.isBound, true)) {
        auto const size = TalIec61850Scl::sampleSize(*dataSet);
        auto binding = size ? TalIec61850Scl::bindSamples(*dataSet, *size) : std::nullopt;
        if (binding) {
            auto meanings = meaningsOf(*dataSet, *binding);
            known.samples = {.layout = std::move(binding->layout), .channels = std::move(meanings)};
        }
    }
    return known.samples ? &*known.samples : nullptr;
}

/// What samples are up to a member of unknown width, and what they look like from there on.
std::optional<DescribedSamples> StreamNames::partOf(DataSet const& dataSet,
                                                    StreamLayout const& found) {
    auto binding = TalIec61850Scl::bindSamples(dataSet, found.dataSize);
    if (!binding) {
        return std::nullopt;
    }
    auto meanings = meaningsOf(dataSet, *binding);
    if (auto const& inferred = found.found.layout) {
        auto const described = binding->layout.members();
        auto const all = inferred->members();
        if (described.size() <= all.size() &&
            std::equal(described.begin(), described.end(), all.begin())) {
            return DescribedSamples{.layout = *inferred, .channels = std::move(meanings)};
        }
    }
    return DescribedSamples{.layout = std::move(binding->layout), .channels = std::move(meanings)};
}

DescribedSamples const* StreamNames::samplesOf(StreamKey const& stream, StreamLayout const& found,
                                               NamedPlace const& place) {
    DescribedSamples const* samples = samplesOf(stream);
    DataSet const* const dataSet = dataSetOf(stream);
    if (dataSet == nullptr || (samples != nullptr && samples->layout.size() == found.dataSize)) {
        return samples;
    }
    Known& known = knownOf(stream);
    tell(known, {.stream = stream,
                 .dataSet = *dataSet,
                 .place = place,
                 .binding = nullptr,
                 .sampleSize = found.dataSize});
    auto const [part, isNew] = known.parts.try_emplace(found.dataSize);
    if (isNew) {
        part->second = partOf(*dataSet, found);
    }
    return part->second ? &*part->second : nullptr;
}

DescribedSamples const* StreamNames::samplesOf(TrafficIndex const& index,
                                               TrafficStream const& stream,
                                               NameOfFile const& nameOf) {
    DescribedSamples const* const whole = samplesOf(stream.key);
    if (whole != nullptr || dataSetOf(stream.key) == nullptr) {
        return whole;
    }
    Known& known = knownOf(stream.key);
    if (!known.first) {
        auto const layouts = findLayouts(index, stream);
        StreamPart const& part = stream.parts.front();
        std::uint64_t const position =
            part.packets.frameOffsets()[0] + part.packets.pduOffsets()[0];
        known.first = layouts.empty()
                          ? nullptr
                          : samplesOf(stream.key, layouts.front(),
                                      {.file = nameOf(part.file), .position = position});
    }
    return *known.first;
}

StreamNames::LayoutOf StreamNames::layouts() {
    if (!station_) {
        return {};
    }
    return [this](StreamKey const& stream) {
        DescribedSamples const* const samples = samplesOf(stream);
        return samples != nullptr ? std::optional(samples->layout) : std::nullopt;
    };
}

StreamNames::LayoutOf StreamNames::layouts(TrafficIndex const& index, NameOfFile nameOf) {
    if (!station_) {
        return {};
    }
    return [this, &index, nameOf = std::move(nameOf)](StreamKey const& key) {
        TrafficStream const* const stream = index.find(key);
        std::optional<SampleLayout> layout;
        try {
            auto const* const samples = stream != nullptr && key.protocol == StreamProtocol::sv
                                            ? samplesOf(index, *stream, nameOf)
                                            : nullptr;
            layout = samples != nullptr ? std::optional(samples->layout) : std::nullopt;
        } catch (std::system_error const&) {
            layout.reset();  // supervision meets that too, and tells it
        }
        return layout;
    };
}

void StreamNames::look(TrafficIndex const& index) {
    for (TrafficStream const& stream : index.streams()) {
        if (auto const* const controlBlock = controlBlockOf(stream.key)) {
            ieds_.insert(controlBlock->ied);
        }
    }
}

}  // namespace TalIec61850Tools
