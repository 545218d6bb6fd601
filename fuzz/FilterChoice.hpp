#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <cstddef>

#include "fuzz/FuzzInput.hpp"

namespace TalFuzz {

/// Octets of an input that choose a filter; zeros choose the one that admits everything.
inline constexpr std::size_t kFilterChoiceSize = 13;

/// A filter with criteria out of what a store's streams are, so that it hits; some of them changed,
/// so that it misses. Takes `kFilterChoiceSize` octets.
TalIec61850Parser::Filter filterFrom(FuzzInput& input, TalIec61850Parser::Db const& db);

}  // namespace TalFuzz
