#pragma once

// Second decoders of indexed packets, written as plainly as possible, for comparison.

#include <TalIec61850Parser/goose/GoosePdu.hpp>
#include <TalIec61850Parser/sv/ASDUData.hpp>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "support/Bytes.hpp"

namespace TalTest {

/// The whole elements of one level as any reader of BER sees them: definite lengths alone.
struct PlainElement {
    std::uint8_t tag = 0;
    Bytes value;
};
std::vector<PlainElement> plainElements(Bytes const& level);

/// The values of one level by tag; of a tag that occurs several times, the last.
std::map<std::uint8_t, Bytes> plainFields(Bytes const& level);

/// The values of the ASDUs of a whole A2 element, which is at `at` in `octets`.
std::vector<std::map<std::uint8_t, Bytes>> plainAsdus(Bytes const& octets, std::size_t at);

/// The octets as one number, most significant first.
std::uint64_t plainNumber(Bytes const& value);

/// What the library's decoders must make of a file that holds these octets. Texts are rendered by
/// the library's Asn1Parser; finding the values is done here.
TalIec61850Parser::GoosePdu expectedGoosePdu(Bytes const& file, std::uint64_t position);
std::vector<TalIec61850Parser::ASDUData> expectedAsdus(Bytes const& file, std::uint64_t position);

}  // namespace TalTest
