#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <cstddef>

#include "support/Bytes.hpp"

namespace TalFuzz {

/// Requires that the parsers of both roads read one identity out of a frame, and that their public
/// steps make of its PDU what the parsers made of it.
/// @param offset  where the payload begins, or anywhere
void requireOneIdentity(TalTest::Bytes const& frame, std::size_t offset,
                        TalIec61850Parser::Filter const& filter);

}  // namespace TalFuzz
