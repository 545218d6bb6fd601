#pragma once

// Internal: recognises frames that agree with an earlier one in every octet that was looked at.

#include <TalIec61850Parser/capture/FrameConclusion.hpp>
#include <TalIec61850Parser/codec/BerReader.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace TalIec61850Parser::detail {

/// Remembers frames as likenesses: a size, a kind, which octets count, and what these hold. A frame
/// is like a remembered one when all four agree; its other octets may hold anything.
///
/// It knows nothing of what is in a frame, nor of what was concluded from it: what counts is said
/// by whoever lets it remember. Memory is bounded whatever it is shown, by some 8 MiB in all. A
/// memory that is full takes in nothing more, until it has failed to recognise so many frames that
/// it starts afresh.
class FrameMemory {
public:
    /// Larger frames are not remembered.
    static constexpr std::size_t kMaxFrameSize = std::size_t{16} << 10U;
    static constexpr std::size_t kMaxLikenesses = std::size_t{1} << 15U;

    FrameMemory() { heads_.fill(kNone); }

    /// What was concluded from the likeness that came after the last one found, the time before, if
    /// the frame is like it; otherwise null. Most publishers take turns, so this is worth a try.
    [[nodiscard]] FrameConclusion* findExpected(Octets frame, std::uint8_t kind);

    /// What was concluded from the remembered frame that this one is like; null when there is none.
    /// @param kind  what tells frames apart besides their octets
    /// @return valid until the next call of another operation
    [[nodiscard]] FrameConclusion* find(Octets frame, std::uint8_t kind);

    /// Whether a frame that was not found should be remembered. Asked once for each such frame: a
    /// full memory that has been of too little use forgets everything here.
    [[nodiscard]] bool wantsMore();

    /// Remembers a frame that `find` does not know, if there is room.
    /// @param mask  0xFF for each octet of the frame that counts, 0 for the others
    void remember(Octets frame, Octets mask, std::uint8_t kind, FrameConclusion const& conclusion);

private:
    /// Octets compared at once. The compiler's own vectors: plain loops over octets are compiled
    /// to several times as many instructions.
    using Unit [[gnu::vector_size(16)]] = std::uint64_t;

    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    /// One cache line.
    struct alignas(64) Likeness {
        std::uint32_t form = 0;
        std::uint32_t firstHeld = 0;
        std::uint16_t firstUnit = 0;
        std::uint16_t unitCount = 0;
        /// The likeness of the frame that came after the last one like this.
        std::uint32_t successor = kNone;
        FrameConclusion conclusion;
    };
    /// Eight octets by which the likenesses of a layout are told apart.
    struct KeyWord {
        std::uint64_t mask = 0;
        std::size_t position = 0;
        /// Which word it is of those that are held of a likeness.
        std::size_t index = 0;
    };
    /// A place in the hash table of a layout.
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t likeness = kNone;
        std::uint32_t firstHeld = 0;
    };
    /// The likenesses that have size, kind and the octets that count in common.
    struct Layout {
        std::uint16_t size = 0;
        std::uint8_t kind = 0;
        std::uint16_t firstUnit = 0;
        std::uint16_t unitCount = 0;
        std::uint32_t next = kNone;
        std::uint32_t likenessCount = 0;
        std::uint32_t keyCount = 0;
        std::array<KeyWord, 8> keys;
        std::vector<Slot> slots;
    };

    static constexpr int kMostTrust = 8;
    static constexpr std::size_t kHeadCount = 2048;
    /// Neighbouring slots in which a likeness may lie.
    static constexpr std::size_t kMaxProbes = 16;

    template <typename Word>
    [[nodiscard]] static Word load(std::uint8_t const* octets) {
        Word word{};
        std::memcpy(&word, octets, sizeof word);
        return word;
    }
    [[nodiscard]] static std::uint32_t formOf(Octets frame, std::uint8_t kind) {
        return static_cast<std::uint32_t>(frame.size()) << 8U | kind;
    }
    [[nodiscard]] static std::size_t headOf(std::size_t size, std::uint8_t kind) {
        return (size + kind * std::size_t{617}) % kHeadCount;
    }
    [[nodiscard]] bool agrees(std::uint8_t const* frame, std::size_t firstUnit,
                              std::size_t unitCount, std::size_t firstHeld) const;
    [[nodiscard]] std::uint32_t lookUp(Octets frame, std::uint8_t kind) const;

    [[nodiscard]] std::uint32_t findOrAddLayout(Octets mask, std::uint8_t kind);
    [[nodiscard]] std::uint64_t hashOfHeld(Layout const& layout, Likeness const& likeness) const;
    [[nodiscard]] bool insert(Layout& layout, std::uint32_t likeness);
    void rehash(Layout& layout, std::size_t slotCount) const;
    [[nodiscard]] bool addKey(Layout& layout, Likeness const& a, Likeness const& b) const;

    std::uint32_t last_ = kNone;
    std::uint32_t expected_ = kNone;
    int trust_ = 0;
    std::vector<Layout> layouts_;
    // The units of all layouts, one behind the other: where they lie in a frame, what counts there.
    std::vector<std::uint32_t> positions_;
    std::vector<Unit> masks_;
    std::vector<Likeness> likenesses_;
    // What the units of each likeness hold, those octets zeroed that do not count.
    std::vector<Unit> held_;
    bool isFull_ = false;
    std::size_t unknownSinceFull_ = 0;
    // Where each list of layouts begins, by size and kind.
    std::array<std::uint32_t, kHeadCount> heads_{};
};

inline bool FrameMemory::agrees(std::uint8_t const* frame, std::size_t firstUnit,
                                std::size_t unitCount, std::size_t firstHeld) const {
    Unit const* const masks = masks_.data() + firstUnit;
    Unit const* const held = held_.data() + firstHeld;
    std::uint32_t const* const positions = positions_.data() + firstUnit;
    Unit different{};
    for (std::size_t i = 0; i < unitCount; ++i) {
        different |= (load<Unit>(frame + positions[i]) & masks[i]) ^ held[i];
    }
    return (different[0] | different[1]) == 0;
}

inline FrameConclusion* FrameMemory::findExpected(Octets frame, std::uint8_t kind) {
    if (expected_ == kNone) [[unlikely]] {
        return nullptr;
    }
    Likeness& likeness = likenesses_[expected_];
    if (likeness.form != formOf(frame, kind) ||
        !agrees(frame.data(), likeness.firstUnit, likeness.unitCount, likeness.firstHeld))
        [[unlikely]] {
        return nullptr;
    }
    last_ = expected_;
    expected_ = likeness.successor;
    trust_ = kMostTrust;
    return &likeness.conclusion;
}

}  // namespace TalIec61850Parser::detail
