#pragma once

// Internal: how the parts of a view are copied.

#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/packet/RawElement.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Analysis {

[[nodiscard]] inline std::string toOwned(std::string_view text) { return std::string(text); }

/// A copy of the field where it is set.
template <typename View>
[[nodiscard]] auto ownedField(std::optional<View> const& field) {
    return field ? std::optional(toOwned(*field)) : std::nullopt;
}

/// What a view hands on as elements that no field takes.
template <typename View>
[[nodiscard]] std::vector<RawElement> ownedOthers(View const& view) {
    std::vector<RawElement> others;
    view.visitOthers([&](ElementView const& element) { others.push_back(toOwned(element)); });
    return others;
}

/// What a view hands on as faults.
template <typename View>
[[nodiscard]] Faults ownedFaults(View const& view) {
    Faults faults;
    view.visitFaults([&](Fault const& fault) { faults.push_back(fault); });
    return faults;
}

}  // namespace TalIec61850Analysis
