#pragma once

// Internal: a goosePdu that was indexed, read again.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/traffic/CaptureWindow.hpp>
#include <cstdint>

namespace TalIec61850Analysis::detail {

/// The octets of a goosePdu, from its identifier on, by its own length.
/// @param window      of the captures; what is returned is valid until it is asked again
/// @param fileOffset  of a goosePdu that is all there: what a snap length cut off would be octets
/// of
///                    the next record
/// @throws std::system_error  the capture cannot be read, or no longer has the message (ESTALE)
[[nodiscard]] Octets readGoosePdu(CaptureWindow& window, std::uint32_t file,
                                  std::uint64_t fileOffset);

/// The octets of a goosePdu that a snap length cut off, from its identifier up to the end of stNum:
/// what comes before that was captured, where the index has stNum.
/// @param window      as above
/// @param fileOffset  of a goosePdu of which the index has stNum
/// @throws std::system_error  the capture cannot be read, or no longer has stNum there (ESTALE)
[[nodiscard]] Octets readCutGoosePdu(CaptureWindow& window, std::uint32_t file,
                                     std::uint64_t fileOffset);

}  // namespace TalIec61850Analysis::detail
