#pragma once

// Random traffic for property tests: frames, captures and filters. Addresses, APPIDs
// and names come from small pools, so that streams repeat and filters hit.

#include <rapidcheck.h>

#include <TalIec61850Parser/capture/Filter.hpp>
#include <cstdint>
#include <iosfwd>
#include <vector>

#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"

namespace TalTest {

/// One record to be: its fraction is written as it is, whatever the unit of the capture.
struct RandomRecord {
    std::uint32_t seconds = 0;
    std::uint32_t fraction = 0;
    Bytes frame;
};

std::ostream& operator<<(std::ostream& out, RandomRecord const& record);

using RandomRecords = std::vector<RandomRecord>;

/// A frame of GOOSE or SV whose PDU is a random BER tree.
rc::Gen<Bytes> frameOfRandomBer();

/// A frame of GOOSE or SV as a device sends it.
rc::Gen<Bytes> validFrame();

/// Any of the above, also with octets changed, inserted or cut, and frames of a few octets.
rc::Gen<Bytes> anyFrame();

/// Up to two dozen records of such frames.
rc::Gen<RandomRecords> recordsOf(rc::Gen<Bytes> frames);

rc::Gen<CaptureVariant> anyVariant();

/// Lists of up to three entries; any of them may be empty, any protocol off.
rc::Gen<TalIec61850Parser::Filter> anyFilter();

/// The records as a capture.
Bytes captureOf(RandomRecords const& records, CaptureVariant variant);

}  // namespace TalTest

namespace TalIec61850Parser {

/// For RapidCheck to print.
std::ostream& operator<<(std::ostream& out, Filter const& filter);

}  // namespace TalIec61850Parser
