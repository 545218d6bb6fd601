#pragma once

// Internal: compares frames with remembered ones, in blocks and under a mask.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace TalIec61850Parser::wire {

/// Masks for frames, and the octets of frames that are significant under such a mask.
///
/// A mask is kept as the blocks of 16 octets that cover its significant octets; where it has none,
/// nothing is compared.
class MaskedBlocks {
public:
    /// Octets that are compared at once. The compiler's own vectors, which it compiles well; a
    /// plain loop over octets takes it several times as many instructions.
    using Block [[gnu::vector_size(16)]] = std::uint64_t;
    static constexpr std::size_t kBlockSize = sizeof(Block);
    static constexpr std::size_t kWordSize = sizeof(std::uint64_t);
    static constexpr std::size_t kWordsPerBlock = kBlockSize / kWordSize;

    /// The blocks of one mask.
    struct Mask {
        std::uint16_t first = 0;
        std::uint16_t count = 0;
    };

    /// Eight octets of a frame that are in a block of a mask.
    struct MaskedWord {
        std::uint64_t mask = 0;
        /// In a frame.
        std::uint32_t index = 0;
    };

    /// @param mask  0xFF for each significant octet, 0 for the others; at least kBlockSize of them
    Mask addMask(Octets mask);
    /// Takes back the mask that was added last.
    void removeLast(Mask mask);
    [[nodiscard]] bool areEqual(Mask a, Mask b) const;
    [[nodiscard]] std::size_t maskBlockCount() const { return masks_.size(); }

    /// Keeps the significant octets of a frame.
    /// @return by which they are found again
    std::uint32_t hold(Octets frame, Mask mask);
    /// Takes back what was held last.
    void releaseFrom(std::uint32_t firstHeld) { held_.resize(firstHeld); }
    [[nodiscard]] std::size_t heldBlockCount() const { return held_.size(); }

    /// Whether a frame has these significant octets.
    /// @param frame  of the size that the mask was made for
    [[nodiscard]] bool matches(std::uint8_t const* frame, Mask mask, std::uint32_t firstHeld) const;
    /// Whether each of some frames has them; asking for all takes less than one by one.
    [[nodiscard]] bool matchAll(std::span<std::uint8_t const* const> frames, Mask mask,
                                std::uint32_t firstHeld) const;

    [[nodiscard]] std::size_t wordCount(Mask mask) const { return kWordsPerBlock * mask.count; }
    /// @param number  below wordCount
    [[nodiscard]] MaskedWord wordOf(Mask mask, std::size_t number) const;
    [[nodiscard]] std::uint64_t heldWord(std::uint32_t firstHeld, std::size_t number) const {
        return held_[firstHeld + number / kWordsPerBlock][number % kWordsPerBlock];
    }

    template <typename Value>
    [[nodiscard]] static Value load(std::uint8_t const* octets) {
        Value value{};
        std::memcpy(&value, octets, sizeof value);
        return value;
    }

private:
    // Of all masks: where each block is in a frame, and what is significant there.
    std::vector<std::uint32_t> indices_;
    std::vector<Block> masks_;
    // Of all frames: their blocks, with octets zeroed that are not significant.
    std::vector<Block> held_;
};

inline bool MaskedBlocks::matches(std::uint8_t const* frame, Mask mask,
                                  std::uint32_t firstHeld) const {
    std::uint32_t const* const indices = indices_.data() + mask.first;
    Block const* const masks = masks_.data() + mask.first;
    Block const* const held = held_.data() + firstHeld;
    Block different{};
    for (std::size_t i = 0; i < mask.count; ++i) {
        different |= (load<Block>(frame + indices[i]) & masks[i]) ^ held[i];
    }
    return (different[0] | different[1]) == 0;
}

inline bool MaskedBlocks::matchAll(std::span<std::uint8_t const* const> frames, Mask mask,
                                   std::uint32_t firstHeld) const {
    Block different{};
    for (std::size_t i = 0; i < mask.count; ++i) {
        std::uint32_t const index = indices_[mask.first + i];
        Block const significant = masks_[mask.first + i];
        Block const held = held_[firstHeld + i];
        for (std::uint8_t const* const frame : frames) {
            different |= (load<Block>(frame + index) & significant) ^ held;
        }
    }
    return (different[0] | different[1]) == 0;
}

}  // namespace TalIec61850Parser::wire
