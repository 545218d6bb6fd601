#pragma once

// Internal: what the copies of a frame share.

#include <TalIec61850Analysis/redundancy/FrameCourse.hpp>
#include <TalIec61850Analysis/traffic/JoinedHash.hpp>
#include <cstddef>
#include <cstdint>

namespace TalIec61850Analysis::detail {

/// Source, kind and sequence number.
struct CopyKey {
    std::uint64_t value = 0;

    friend bool operator==(CopyKey const&, CopyKey const&) = default;
};

/// @param redundancy  HSR or PRP
[[nodiscard]] constexpr CopyKey copyKeyOf(std::uint32_t source, Redundancy redundancy,
                                          std::uint16_t sequence) {
    constexpr unsigned kSequenceBits = 16;
    std::uint64_t const kind = redundancy == Redundancy::prp ? 1 : 0;
    return {((std::uint64_t{source} << 1U | kind) << kSequenceBits) | sequence};
}

/// A capture cannot be written whose keys share one hash.
struct CopyKeyHash {
    [[nodiscard]] std::size_t operator()(CopyKey key) const {
        JoinedHash hash;
        hash.add(key.value);
        return hash.result();
    }
};

}  // namespace TalIec61850Analysis::detail
