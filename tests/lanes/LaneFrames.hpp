#pragma once

// Frames for the lanes: as devices send them, and as only an attacker or a fault would.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <string>
#include <vector>

#include "support/Bytes.hpp"

namespace TalTest {

struct NamedFrame {
    std::string name;
    Bytes octets;
};

/// GOOSE and SV with every tag and trailer, padded, signed, of one ASDU and of several.
std::vector<NamedFrame> deviceFrames();

/// What no device sends: fields missing, empty, doubled or misplaced, PDUs in PDUs, damaged levels,
/// as many elements as are looked at, and tails of any kind.
std::vector<NamedFrame> oddFrames();

/// Both.
std::vector<NamedFrame> allFrames();

struct NamedFilter {
    std::string name;
    TalIec61850Parser::Filter filter;
};

/// Filters that accept those frames, or reject some of them at each of the criteria.
std::vector<NamedFilter> laneFilters();

}  // namespace TalTest
