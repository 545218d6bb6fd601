// A description of a station, then values of a message: whatever octets they have, what is read is
// sound, and so is the binding of the values to each data set.

#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Scl/match/BindMembers.hpp>
#include <TalIec61850Scl/read/ReadStation.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/Check.hpp"
#include "fuzz/Tally.hpp"

namespace {

using namespace TalIec61850Scl;
using namespace TalFuzz;

/// Between the description and the values.
constexpr std::string_view kSeparator = "<!--values-->";

/// More takes longer than an input should, and shows nothing else.
constexpr std::size_t kMostCompared = 2000;

void requireSound(DataSet const& dataSet) {
    DataSetMember const* before = nullptr;
    for (DataSetMember const& member : dataSet.members) {
        require(!member.path.empty() && member.path.size() <= 64, "a value is somewhere");
        require(member.path.front() < dataSet.entries, "a value is of an entry");
        require(member.type != BasicType::structure, "a structure is no value");
        require(before == nullptr || before->path < member.path, "values are in their order");
        require(!member.scale || member.type != BasicType::unknown, "what is scaled is known");
        before = &member;
    }
}

void requireSound(StationDescription const& station) {
    for (ControlBlock const& block : station.controlBlocks) {
        require(!block.dataSet || *block.dataSet < station.dataSets.size(), "it has a data set");
        require(!block.dataSet || block.dataSetReference, "a data set has a reference");
        require(block.place.line > 0, "it is in a line");
        for (Subscriber const& subscriber : block.subscribers) {
            require(!subscriber.member ||
                        (block.dataSet &&
                         *subscriber.member < station.dataSets[*block.dataSet].members.size()),
                    "a subscriber takes what there is");
        }
    }
    for (DataSet const& dataSet : station.dataSets) requireSound(dataSet);
    Diagnostic const* before = nullptr;
    for (Diagnostic const& diagnostic : station.diagnostics) {
        require(!nameOf(diagnostic.code).empty(), "a diagnostic has a name");
        require(before == nullptr || before->place.line <= diagnostic.place.line,
                "diagnostics are in the order of lines");
        before = &diagnostic;
    }
}

void requireSoundBinding(DataSet const& dataSet, TalIec61850Analysis::DataViews const& values) {
    MemberBinding const binding = bindMembers(dataSet, values);
    require(binding.bound <= dataSet.members.size(), "there are not more members than there are");
    bool const isWhole = binding.bound == dataSet.members.size() && binding.endPath.empty();
    require(isWhole == (binding.end == BindingEnd::none), "an end has a place and a reason");
    for (std::size_t i = 0; i < std::min(dataSet.members.size(), kMostCompared); ++i) {
        auto const* const named = binding.memberAt(dataSet, dataSet.members[i].path);
        require(named == (i < binding.bound ? &dataSet.members[i] : nullptr),
                "values have names up to the end");
    }
    auto const size = sampleSize(dataSet);
    std::size_t const octets = size.value_or(leastSampleSize(dataSet));
    auto const samples = bindSamples(dataSet, octets);
    require(!samples || samples->channelMembers.size() <= samples->bound, "a channel is a member");
    require(!samples || samples->layout.size() == octets, "a layout is of all octets");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally read("descriptions have values");
    std::string_view const input(reinterpret_cast<char const*>(data), size);
    std::string_view const text = input.substr(0, input.rfind(kSeparator));
    bool const hasValues = text.size() < input.size();
    std::size_t const valuesAt = hasValues ? text.size() + kSeparator.size() : size;
    TalIec61850Analysis::DataViews const values(
        TalIec61850Analysis::Elements({data + valuesAt, size - valuesAt}));
    StationDescription const station = readStation(text, "station.scd");
    requireSound(station);
    for (DataSet const& dataSet : station.dataSets) requireSoundBinding(dataSet, values);
    std::size_t members = 0;
    for (DataSet const& dataSet : station.dataSets) members += dataSet.members.size();
    if (members < kMostCompared) {
        require(readStation(text, "station.scd") == station, "reading again gives the same");
    }
    read.add(members > 0 ? 1 : 0, 1);
    return 0;
}
