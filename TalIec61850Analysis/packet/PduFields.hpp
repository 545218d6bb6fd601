#pragma once

// Internal: the fields of a goosePdu and of an ASDU, and what views make of them.

#include <TalIec61850Analysis/packet/AsduView.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/FieldFilter.hpp>
#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Parser/wire/GooseTags.hpp>
#include <TalIec61850Parser/wire/SvTags.hpp>
#include <optional>

namespace TalIec61850Analysis {

inline constexpr KnownFields kGooseFields = {
    .primitiveEnd = TalIec61850Parser::wire::kNumDatSetEntries + 1,
    .constructed = TalIec61850Parser::wire::kAllDataTag};
inline constexpr KnownFields kAsduFields = {.primitiveEnd =
                                                TalIec61850Parser::wire::kGmIdentity + 1};

/// Sets the field of a view that is made of an element.
/// @param element  one that a FieldFilter of these fields takes
/// @return what is wrong with it; what is wrong inside allData is not looked for
std::optional<FaultKind> setField(ElementView const& element, GooseView& view) noexcept;
std::optional<FaultKind> setField(ElementView const& element, AsduView& view) noexcept;

}  // namespace TalIec61850Analysis
