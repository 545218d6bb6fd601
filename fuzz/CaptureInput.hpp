#pragma once

// What fuzzers of whole captures are given: a filter's choice, then the file.

#include <cstddef>
#include <cstdint>
#include <span>

#include "fuzz/FilterChoice.hpp"
#include "fuzz/FuzzInput.hpp"
#include "support/Bytes.hpp"

namespace TalFuzz {

struct CaptureInput {
    /// `kFilterChoiceSize` octets, or as many as there were.
    TalTest::Bytes filterChoice;
    TalTest::Bytes capture;
};

CaptureInput captureInput(std::span<std::uint8_t const> octets);

/// The capture with a last record that claims at most 64 KiB more than the file holds: filling up
/// the 16 MiB that the library would complete is the same again, and slow.
TalTest::Bytes withoutLongClaim(TalTest::Bytes capture);

}  // namespace TalFuzz
