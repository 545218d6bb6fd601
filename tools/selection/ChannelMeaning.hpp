#pragma once

#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

/// From a count to a quantity.
struct ChannelScale {
    /// What a count is multiplied with; where `divides`, divided by, so that decimal units come out
    /// as they are written.
    double factor = 1;
    bool divides = false;
    /// What is added to that.
    double offset = 0;

    [[nodiscard]] double operator()(double count) const {
        return (divides ? count / factor : count * factor) + offset;
    }
    /// A scale of so many units a count.
    [[nodiscard]] static ChannelScale of(double unitsPerCount);
    /// Units for a count.
    [[nodiscard]] double unitsPerCount() const { return divides ? 1 / factor : factor; }

    friend bool operator==(ChannelScale const&, ChannelScale const&) = default;
};

/// What is known of a channel besides its octets.
struct ChannelMeaning {
    std::string name;
    /// Of values that are scaled. Empty where it is not known.
    std::string unit;
    /// A, B, C or N; empty where it is none.
    std::string phase;
    /// Not set where it is not known.
    std::optional<ChannelScale> scale;
    /// The logical node that sends it, with its IED: IED1LD0/TCTR1. Empty where it is not known.
    std::string component = {};

    friend bool operator==(ChannelMeaning const&, ChannelMeaning const&) = default;
};

/// Whether a layout is that of 9-2LE: eight times INT32 and quality.
[[nodiscard]] bool is92Le(TalIec61850Analysis::SampleLayout const& layout);

/// What the channels of a layout mean where nobody describes it: of 9-2LE, four currents in mA and
/// four voltages in 10 mV.
/// @return one for each channel; empty where nothing is known
[[nodiscard]] std::vector<ChannelMeaning> const& meaningsOf(
    TalIec61850Analysis::SampleLayout const& layout);

}  // namespace TalIec61850Tools
