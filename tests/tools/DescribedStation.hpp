#pragma once

#include <string>
#include <vector>

#include "support/Bytes.hpp"
#include "support/Goose.hpp"
#include "support/WaveformStream.hpp"

// A station and its description: two relays that publish GOOSE, and a merging unit.

namespace TalTest {

/// Its SCD. RELAY1 publishes PTRC1.Tr.general, PTRC1.Tr.q, PTRC1.Op as a structure of general, q
/// and t, and MMXU1.A.phsA.cVal.mag.f; RELAY2 publishes PTRC2.Tr.general; MU01 publishes a current
/// of 1 mA a count and a voltage as a number of V, each with its quality.
/// @param typeOfTrip   bType of general
/// @param moreSamples  FCDAs after those of MU01
[[nodiscard]] std::string describedStation(std::string const& typeOfTrip = "BOOLEAN",
                                           std::string const& moreSamples = "");

/// A message of RELAY1, which trips or not.
[[nodiscard]] GooseMessage relay1Message(std::uint32_t stNum, bool isTripped,
                                         std::uint16_t quality = 0);

/// Two states of RELAY1 and two of RELAY2, each of one message.
[[nodiscard]] Bytes describedTrips();

/// How MU01 samples.
[[nodiscard]] WaveformSettings describedWave();

/// A capture of it.
[[nodiscard]] Bytes describedSamples();

/// The octets of a text.
[[nodiscard]] Bytes octetsOfText(std::string const& text);

}  // namespace TalTest
