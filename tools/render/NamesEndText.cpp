#include "tools/render/NamesEndText.hpp"

#include <fmt/format.h>

#include <TalIec61850Scl/match/BindMembers.hpp>

#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/MemberText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Tools {

using TalIec61850Scl::BindingEnd;
using TalIec61850Scl::DataSet;
using TalIec61850Scl::DataSetMember;
using TalIec61850Scl::MemberBinding;

namespace {

/// "BOOLEAN LD0/PTRC1.Tr.general", or its place where the description has no name for it.
std::string describedText(DataSetMember const& member) {
    return escapeText(member.bType.empty() ? member.name
                                           : fmt::format("{} {}", member.bType, member.name));
}

std::string bindingText(DataSet const& dataSet, MemberBinding const& binding) {
    std::string const place = memberText(binding.endPath);
    DataSetMember const* const next =
        binding.bound < dataSet.members.size() ? &dataSet.members[binding.bound] : nullptr;
    switch (binding.end) {
        case BindingEnd::fewerValues:
            return fmt::format("there is no value {}, described as {}", place,
                               next != nullptr ? describedText(*next) : "another one");
        case BindingEnd::moreValues:
            return fmt::format("value {} is not described", place);
        default:
            return fmt::format("value {} is of {}, described as {}", place,
                               binding.found ? fmt::format("type {}", toText(*binding.found))
                                             : std::string("another type"),
                               next != nullptr ? describedText(*next) : "another one");
    }
}

std::string samplesText(DataSet const& dataSet, std::size_t found) {
    auto const binding = TalIec61850Scl::bindSamples(dataSet, found);
    auto const described = TalIec61850Scl::sampleSize(dataSet);
    std::size_t const least = TalIec61850Scl::leastSampleSize(dataSet);
    if (!described && found >= least) {
        DataSetMember const& unknown = dataSet.members[binding ? binding->bound : 0];
        return fmt::format("the width of {} is not known: {}", describedText(unknown),
                           binding ? "no names from there on" : "channels have no names");
    }
    return fmt::format("samples have {}, {}{} are described: channels have no names",
                       plural(found, "octet"), described ? "" : "at least ",
                       described.value_or(least));
}

}  // namespace

std::string namesEndText(NamesEnd const& end) {
    std::string const what =
        end.binding != nullptr ? bindingText(end.dataSet, *end.binding) + ": no names from there on"
                               : samplesText(end.dataSet, end.sampleSize);
    return fmt::format("{}@{}: {}: {}", escapeText(end.place.file), end.place.position,
                       escapeText(end.stream.name), what);
}

}  // namespace TalIec61850Tools
