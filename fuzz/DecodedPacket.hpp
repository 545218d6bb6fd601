#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/Bytes.hpp"

namespace TalFuzz {

/// The booleans of allData as parseBooleanValues must find them.
std::vector<float> plainBooleans(TalTest::Bytes const& allData);

/// Decodes what is at a position of a file, by the library and by the decoders of the tests,
/// and ends the program when they differ.
/// @param octets  what the file holds
/// @return whether there is more than an empty result
bool isGooseDecodedRightly(std::string const& path, TalTest::Bytes const& octets,
                           std::uint64_t position);
bool isSvDecodedRightly(std::string const& path, TalTest::Bytes const& octets,
                        std::uint64_t position);

}  // namespace TalFuzz
