#pragma once

// Internal: values as text.

#include <TalIec61850Analysis/packet/DataValue.hpp>
#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/names/MemberNames.hpp"
#include "tools/render/TextTree.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::DataValue;
using TalIec61850Analysis::Integer;
using TalIec61850Analysis::UtcTime;

/// A value in one line, without its kind: true, 0110, -5, 1.5, "text" without the quotes, a time,
/// octets in hexadecimal; members in braces with commas between. Safe for a terminal.
[[nodiscard]] std::string toText(DataValue const& value);

/// Adds the values of a message and those inside them, by their numbers and names, with their
/// kinds.
void addData(std::vector<DataValue> const& values, MemberNames const& names, TextTree& tree);

/// NaN, Infinity or -Infinity, for people and in JSON, which has no number for them; none for any
/// other number.
[[nodiscard]] std::optional<std::string> nonFiniteText(double number);

[[nodiscard]] std::string integerText(Integer const& integer);

/// A value as `show` writes it: without its kind, and in brackets what there is to say of it, such
/// as the quality that its bits make. Safe for a terminal.
[[nodiscard]] std::string valueText(DataValue const& value);

/// What the quality of a time says: "leapSecondsKnown, accuracy 10 bits".
[[nodiscard]] std::string timeQualityText(UtcTime const& time);

/// The time, and in brackets what its quality says.
[[nodiscard]] std::string timeText(UtcTime const& time);

}  // namespace TalIec61850Tools
