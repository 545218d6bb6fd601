#include "tools/names/StreamNames.hpp"

#include <TalIec61850Scl/match/MatchStreams.hpp>
#include <utility>
#include <variant>

#include "tools/names/ChannelNames.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;
using TalIec61850Scl::BindingEnd;
using TalIec61850Scl::ControlBlock;
using TalIec61850Scl::DataSet;
using TalIec61850Scl::MemberBinding;

namespace {

constexpr char kGroupEnd = '\xff';

/// Writes down what decides how values are bound: tags, nesting, and the widths that types differ
/// in.
// NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than is read
void appendMake(DataViews const& values, std::string& make) {
    for (DataView const& value : values) {
        make += static_cast<char>(value.tag);
        make += static_cast<char>(value.kind);
        make += static_cast<char>(value.value.index());
        make += value.fault ? '!' : ' ';
        if (auto const* const members = std::get_if<DataViews>(&value.value)) {
            appendMake(*members, make);
            make += kGroupEnd;
        } else if (auto const* const bits = std::get_if<BitStringView>(&value.value)) {
            make += std::to_string(bits->size());
            make += kGroupEnd;
        }
    }
}

}  // namespace

StreamNames::Known& StreamNames::knownOf(StreamKey const& stream) {
    auto const [found, isNew] = known_.try_emplace(stream);
    Known& known = found->second;
    if (!isNew || !station_) {
        return known;
    }
    if (auto const match = TalIec61850Scl::matchStream(stream, *station_)) {
        known.controlBlock = &station_->controlBlocks[match->controlBlock];
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
    DataSet const* const dataSet = dataSetOf(stream);
    if (dataSet == nullptr) {
        return {};
    }
    Known& known = knownOf(stream);
    make_.clear();
    appendMake(allData, make_);
    if (known.make != make_) {
        known.make = make_;
        known.binding =
            std::make_shared<MemberBinding const>(TalIec61850Scl::bindMembers(*dataSet, allData));
        // A message that a snap length cut is as it is described, as far as anyone knows.
        bool const isOther =
            known.binding->end != BindingEnd::none && known.binding->end != BindingEnd::notCaptured;
        if (isOther) {
            tell(known, {.stream = stream,
                         .dataSet = *dataSet,
                         .place = place,
                         .binding = known.binding.get()});
        }
    }
    return {*dataSet, known.binding};
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

void StreamNames::look(TrafficIndex const& index) {
    for (TrafficStream const& stream : index.streams()) {
        if (auto const* const controlBlock = controlBlockOf(stream.key)) {
            ieds_.insert(controlBlock->ied);
        }
    }
}

}  // namespace TalIec61850Tools
