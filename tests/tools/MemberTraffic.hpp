#pragma once

#include "support/Bytes.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest {

/// A capture of streams, one packet each, of which every one differs from gcbPlain or MUplain in
/// one member of its identity, after which it is called: gcbSource, MUvlan5 and so on.
[[nodiscard]] Bytes memberTraffic();

/// A GOOSE message of that name, and a frame of it.
[[nodiscard]] GooseMessage gooseCalled(std::string const& gocbRef);
[[nodiscard]] Bytes gooseFrameCalled(std::string const& gocbRef, Ethernet const& link = Ethernet());

/// An SV message of that name, and a frame of it.
[[nodiscard]] SvMessage svCalled(std::string const& svID);
[[nodiscard]] Bytes svFrameCalled(std::string const& svID, Ethernet const& link = svEthernet());

}  // namespace TalTest
