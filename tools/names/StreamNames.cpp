#include "tools/names/StreamNames.hpp"

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

DescribedSamples const* StreamNames::samplesOf(StreamKey const& stream, std::size_t size,
                                               NamedPlace const& place) {
    DescribedSamples const* const samples = samplesOf(stream);
    if (samples != nullptr && samples->layout.size() == size) {
        return samples;
    }
    if (DataSet const* const dataSet = dataSetOf(stream)) {
        tell(knownOf(stream), {.stream = stream,
                               .dataSet = *dataSet,
                               .place = place,
                               .binding = nullptr,
                               .sampleSize = size});
    }
    return nullptr;
}

std::function<std::optional<SampleLayout>(StreamKey const&)> StreamNames::layouts() {
    if (!station_) {
        return {};
    }
    return [this](StreamKey const& stream) {
        DescribedSamples const* const samples = samplesOf(stream);
        return samples != nullptr ? std::optional(samples->layout) : std::nullopt;
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
