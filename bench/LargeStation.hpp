#pragma once

#include <cstddef>
#include <string>

namespace TalBench {

/// A station's description, made up: IEDs with types of their own, logical nodes with instances and
/// descriptions, a GOOSE and an SV control block each with a data set, addresses, and inputs of
/// values that other IEDs send.
/// @param octets  about as many as it has
[[nodiscard]] std::string largeStation(std::size_t octets);

}  // namespace TalBench
