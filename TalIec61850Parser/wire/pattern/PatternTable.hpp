#pragma once

// Internal: finds the pattern that a frame matches.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <TalIec61850Parser/wire/pattern/MaskedBlocks.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser::wire {

/// Patterns of frames: a size, a variety, a mask of significant octets, and what these hold. A
/// frame matches a pattern when it agrees in all of them; its other octets may hold anything.
///
/// Patterns are numbered from 0 in the order in which they were added. The table takes 8 MiB at
/// most, whatever it is shown.
class PatternTable {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;
    /// Larger frames make no pattern, and neither do smaller ones than a block.
    static constexpr std::size_t kMaxFrameSize = std::size_t{16} << 10U;
    static constexpr std::size_t kMaxPatterns = std::size_t{1} << 15U;

    PatternTable() { heads_.fill(kNone); }

    [[nodiscard]] bool isEmpty() const { return patterns_.empty(); }
    /// Whether a pattern was refused because there is no room for more.
    [[nodiscard]] bool isFull() const { return isFull_; }

    /// @param variety  what tells frames apart besides their octets
    [[nodiscard]] bool matches(std::uint32_t pattern, Octets frame, std::uint8_t variety) const {
        Pattern const& known = patterns_[pattern];
        return known.key == keyOf(frame, variety) &&
               blocks_.matches(frame.data(), known.mask, known.firstHeld);
    }

    /// @param variety  what tells frames apart besides their octets
    /// @return the pattern that the frame matches, or kNone
    [[nodiscard]] std::uint32_t find(Octets frame, std::uint8_t variety) const;

    /// Adds the pattern of a frame that matches none.
    /// @param mask  0xFF for each significant octet of the frame, 0 for the others
    /// @return its number; kNone when it was not taken in
    [[nodiscard]] std::uint32_t add(Octets frame, Octets mask, std::uint8_t variety);

private:
    /// Size and variety of a frame.
    using ShapeKey = std::uint64_t;

    struct Pattern {
        ShapeKey key = 0;
        MaskedBlocks::Mask mask;
        std::uint32_t firstHeld = 0;
    };

    /// Eight octets by which the patterns of a shape are told apart.
    struct HashedWord {
        MaskedBlocks::MaskedWord word;
        /// Among the words of the mask.
        std::uint32_t number = 0;
    };
    /// An entry in the hash table of a shape.
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t pattern = kNone;
    };
    /// All patterns of one size, variety and mask, in a hash table with linear probing. The hash
    /// covers only as many words as are needed to tell the patterns apart.
    struct Shape {
        ShapeKey key = 0;
        MaskedBlocks::Mask mask;
        /// The next shape of the same list.
        std::uint32_t next = kNone;
        std::uint32_t hashedWordCount = 0;
        std::array<HashedWord, 8> hashedWords{};
        std::size_t patternCount = 0;
        std::vector<Slot> slots;
    };

    static constexpr std::size_t kListCount = 2048;

    [[nodiscard]] static ShapeKey keyOf(Octets frame, std::uint8_t variety) {
        return std::uint64_t{frame.size()} << 8U | variety;
    }
    /// The list of shapes with this key, and of some others.
    [[nodiscard]] static std::size_t listOf(ShapeKey key) {
        constexpr std::uint64_t goldenRatio = 0x9E3779B97F4A7C15U;
        constexpr unsigned unusedBits = 53;
        static_assert(kListCount == std::size_t{1} << (64U - unusedBits));
        return key * goldenRatio >> unusedBits;
    }

    [[nodiscard]] std::uint32_t findOrAddShape(ShapeKey key, Octets mask);
    [[nodiscard]] std::uint64_t hashOf(Shape const& shape, Pattern const& pattern) const;
    [[nodiscard]] bool insert(Shape& shape, std::uint32_t pattern);
    [[nodiscard]] bool addHashedWord(Shape& shape, Pattern const& a, Pattern const& b) const;
    void rehash(Shape& shape, std::size_t slotCount) const;

    MaskedBlocks blocks_;
    std::vector<Pattern> patterns_;
    std::vector<Shape> shapes_;
    bool isFull_ = false;
    std::array<std::uint32_t, kListCount> heads_{};
};

}  // namespace TalIec61850Parser::wire
