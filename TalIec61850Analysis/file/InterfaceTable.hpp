#pragma once

// Internal: the interfaces of a capture file, those of all its sections in one list.

#include <TalIec61850Analysis/file/CaptureInterface.hpp>
#include <TalIec61850Parser/wire/TimeUnit.hpp>
#include <cstddef>
#include <vector>

namespace TalIec61850Analysis::detail {

/// What decoders need of an interface.
struct InterfaceUse {
    TalIec61850Parser::wire::TimeUnit timeUnit;
    /// Not where its description cannot be read.
    bool isKnown = true;
};

/// Grows as blocks are read. A file that is read again from some place on finds in it what was
/// added the first time.
struct InterfaceTable {
    static constexpr std::size_t kMost = 16384;

    std::vector<CaptureInterface> interfaces;
    /// As many.
    std::vector<InterfaceUse> uses;
};

}  // namespace TalIec61850Analysis::detail
