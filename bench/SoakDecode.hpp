#pragma once

#include <TalIec61850Parser/store/Package.hpp>
#include <string>

#include "bench/SoakCapture.hpp"

namespace TalBench {

/// Decodes a packet of a capture, and compares with the frame that was written there: the names,
/// the data and what follows from them of a goosePdu, every octet of a sequence of ASDU.
/// @throws std::runtime_error when they differ
void checkDecodedGoose(std::string const& path, TalIec61850Parser::Package const& package,
                       WrittenFrame const& frame);
void checkDecodedSv(std::string const& path, TalIec61850Parser::Package const& package,
                    WrittenFrame const& frame);

}  // namespace TalBench
