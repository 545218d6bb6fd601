#pragma once

#include <string>
#include <string_view>

#include "tools/plot/SvgWriter.hpp"
#include "tools/render/RoundTicks.hpp"
#include "tools/render/ValueRange.hpp"

namespace TalIec61850Tools {

/// The axis of the values of a panel.
class ValueAxis {
public:
    /// @param range  what must be on it; some room is added, also where all values are one
    /// @param unit   that of values; its prefix is chosen, so that labels are short: kV
    /// @param height of the panel, in pixels
    ValueAxis(ValueRange const& range, std::string unit, double height);

    /// Where a value is, in pixels from the top of the panel.
    /// @param value  finite
    [[nodiscard]] double at(double value) const;
    [[nodiscard]] double height() const { return height_; }

    [[nodiscard]] ValueTicks const& ticks() const { return ticks_; }
    /// The number at a tick, in the unit of the axis.
    [[nodiscard]] std::string labelOf(double value) const;
    /// With its prefix; empty where values have none.
    [[nodiscard]] std::string const& unit() const { return unit_; }

private:
    void choosePrefix();
    void chooseForm();

    double height_;
    double low_ = 0;
    double high_ = 0;
    ValueTicks ticks_;
    std::string unit_;
    /// Of the unit that labels have.
    double factor_ = 1;
    /// Of labels that have a factor without a unit: 5M.
    std::string_view suffix_;
    bool isExponential_ = false;
    int decimals_ = 0;
};

}  // namespace TalIec61850Tools
