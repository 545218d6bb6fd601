#pragma once

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

// The names by which findings are asked for, and which other programs read.

/// sampleGap, repeated and so on.
[[nodiscard]] std::string_view toText(TalIec61850Analysis::FindingKind kind);

/// note, warning or error.
[[nodiscard]] std::string_view toText(TalIec61850Analysis::Severity severity);

/// none, unknown, capture, network or publisher.
[[nodiscard]] std::string_view toText(TalIec61850Analysis::LossCause cause);

/// none, dropCounts and so on.
[[nodiscard]] std::string_view toText(TalIec61850Analysis::LossWitness witness);

/// The names of all kinds, in their order.
[[nodiscard]] std::vector<std::string> findingKindNames();

/// The kind of a name; none where there is no such kind.
[[nodiscard]] std::optional<TalIec61850Analysis::FindingKind> findingKindOf(std::string_view name);

/// The names of all severities, the least first.
[[nodiscard]] std::vector<std::string> severityNames();

/// The severity of a name; none where there is no such severity.
[[nodiscard]] std::optional<TalIec61850Analysis::Severity> severityOf(std::string_view name);

}  // namespace TalIec61850Tools
