#pragma once

// What tshark would say of a packet that was read here, field by field and in its notation.

#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <map>
#include <string>
#include <vector>

namespace TalTest {

/// Fields by their names in tshark; of one that occurs several times all values, | between them.
using Told = std::map<std::string, std::string>;

[[nodiscard]] Told inTsharkTerms(TalIec61850Analysis::GoosePacket const& packet);
[[nodiscard]] Told inTsharkTerms(TalIec61850Analysis::SvPacket const& packet);

/// The names of the fields that these give, and nothing else.
[[nodiscard]] std::vector<std::string> const& tsharkGooseFields();
[[nodiscard]] std::vector<std::string> const& tsharkSvFields();

}  // namespace TalTest
