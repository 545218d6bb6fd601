#pragma once

// Internal: what an open file is by its first octets.

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <TalIec61850Parser/wire/CaptureFormat.hpp>

namespace TalIec61850Analysis::detail {

/// Unlike `recogniseCapture` of the wire's rules, this takes every file for a next-generation
/// capture that begins as such.
/// @param file  an open file; octets that it does not have count as zeros
/// @throws std::system_error  the file cannot be read
[[nodiscard]] TalIec61850Parser::wire::CaptureKind recogniseStart(Descriptor const& file);

}  // namespace TalIec61850Analysis::detail
