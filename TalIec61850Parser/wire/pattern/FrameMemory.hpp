#pragma once

// Internal: recognises frames that agree with an earlier one in every octet that was looked at.

#include <TalIec61850Parser/capture/FrameConclusion.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace TalIec61850Parser::detail {

using wire::Octets;

/// Remembers frames as likenesses: a size, a kind, which octets count, and what these hold. A frame
/// is like a remembered one when it agrees in all of them; its other octets may hold anything.
///
/// It knows nothing of what is in a frame, nor of what was concluded from it: what counts is said
/// by whoever lets it remember. It takes 8 MiB at most, whatever it is shown. A memory that is
/// full takes in nothing more until it has failed to recognise so many frames that it starts
/// afresh.
class FrameMemory {
public:
    /// Larger frames are not remembered.
    static constexpr std::size_t kMaxFrameSize = std::size_t{16} << 10U;
    static constexpr std::size_t kMaxLikenesses = std::size_t{1} << 15U;

    FrameMemory() { heads_.fill(kNone); }

    /// What was concluded from the likeness whose turn it is, if this frame is like it; otherwise
    /// null. Most publishers take turns, so that this finds most frames, and sooner than `find`.
    /// @param kind  what tells frames apart besides their octets
    /// @return valid until another operation is called
    [[nodiscard]] FrameConclusion* findNextInTurn(Octets frame, std::uint8_t kind);

    /// What was concluded from the remembered frame that this one is like; null when there is none.
    /// @param kind  what tells frames apart besides their octets
    /// @return valid until another operation is called
    [[nodiscard]] FrameConclusion* find(Octets frame, std::uint8_t kind);

    /// Whether nothing is remembered.
    [[nodiscard]] bool isEmpty() const { return likenesses_.empty(); }

    /// Whether a frame that was not found should be remembered. Asked once for each such frame: a
    /// full memory that has been of too little use forgets everything here.
    [[nodiscard]] bool wantsMore();

    /// Remembers a frame that `find` does not know, if there is room.
    /// @param mask  0xFF for each octet of the frame that counts, 0 for the others
    /// @return what is remembered of the conclusion, valid until another operation is called; null
    ///         when the frame was not taken in
    FrameConclusion* remember(Octets frame, Octets mask, std::uint8_t kind,
                              FrameConclusion const& conclusion);

private:
    /// Octets that are compared at once. The compiler's own vectors, on which it does well; a plain
    /// loop over octets takes it several times as many instructions.
    using Unit [[gnu::vector_size(16)]] = std::uint64_t;
    static constexpr std::size_t kWordsPerUnit = sizeof(Unit) / sizeof(std::uint64_t);

    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    /// Size and kind in one.
    using Form = std::uint64_t;

    /// Units of frames of one form, in the lists of positions and masks.
    struct UnitRange {
        std::uint16_t first = 0;
        std::uint16_t count = 0;
    };
    /// One remembered frame, all but its octets in one cache line.
    struct alignas(64) Likeness {
        Form form = 0;
        UnitRange units;
        /// What its units hold, in the list of these.
        std::uint32_t firstHeld = 0;
        /// The likeness whose turn comes next.
        std::uint32_t successor = kNone;
        FrameConclusion conclusion;
    };
    static_assert(sizeof(Likeness) == 64);

    /// Eight octets by which the likenesses of a layout are told apart.
    struct KeyWord {
        std::uint64_t mask = 0;
        /// Octets from the begin of a frame.
        std::uint32_t position = 0;
        /// Which word it is of those that are held of a likeness.
        std::uint32_t index = 0;
    };
    /// A place in the hash table of a layout.
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t likeness = kNone;
    };
    /// The likenesses that have form and counting octets in common, in a hash table with linear
    /// probing. Its hash is over just enough key words to be another one for each of them.
    struct Layout {
        Form form = 0;
        UnitRange units;
        /// The next layout of the same list.
        std::uint32_t next = kNone;
        std::uint32_t keyCount = 0;
        std::array<KeyWord, 8> keys{};
        std::size_t likenessCount = 0;
        std::vector<Slot> slots;
    };

    static constexpr std::size_t kListCount = 2048;
    static constexpr int kMostTrust = 8;

    template <typename Value>
    [[nodiscard]] static Value load(std::uint8_t const* octets) {
        Value value{};
        std::memcpy(&value, octets, sizeof value);
        return value;
    }
    [[nodiscard]] static Form formOf(Octets frame, std::uint8_t kind) {
        return std::uint64_t{frame.size()} << 8U | kind;
    }
    /// The list of layouts for frames of this form.
    [[nodiscard]] std::uint32_t& headFor(Form form) {
        constexpr std::uint64_t goldenRatio = 0x9E3779B97F4A7C15U;
        constexpr unsigned unusedBits = 53;
        static_assert(kListCount == std::size_t{1} << (64U - unusedBits));
        return heads_[form * goldenRatio >> unusedBits];
    }
    [[nodiscard]] bool agrees(std::uint8_t const* frame, Likeness const& likeness) const;

    [[nodiscard]] std::uint32_t lookUp(Octets frame, std::uint8_t kind);
    void noteTurn(std::uint32_t found);

    [[nodiscard]] std::uint32_t findOrAddLayout(Form form, Octets mask);
    void addUnits(Octets mask);
    [[nodiscard]] bool haveSameUnits(UnitRange a, UnitRange b) const;
    [[nodiscard]] std::uint64_t heldWord(Likeness const& likeness, std::size_t index) const;
    [[nodiscard]] std::uint64_t hashOf(Layout const& layout, Likeness const& likeness) const;
    [[nodiscard]] bool insert(Layout& layout, std::uint32_t likeness);
    [[nodiscard]] bool addKey(Layout& layout, std::uint32_t likeness, std::uint32_t other) const;
    void rehash(Layout& layout, std::size_t slotCount) const;

    std::uint32_t last_ = kNone;      // the likeness that had its turn last
    std::uint32_t expected_ = kNone;  // its successor, as long as turns are to be trusted
    std::uint32_t between_ = kNone;   // the one that came out of turn after it
    int trust_ = 0;

    std::vector<Likeness> likenesses_;
    // What the units of all likenesses hold, with those octets zeroed that do not count.
    std::vector<Unit> held_;
    // Where the units of all layouts lie in a frame, and what counts there.
    std::vector<std::uint32_t> positions_;
    std::vector<Unit> masks_;
    std::vector<Layout> layouts_;
    bool isFull_ = false;
    std::size_t unknownSinceFull_ = 0;
    std::array<std::uint32_t, kListCount> heads_{};
};

inline bool FrameMemory::agrees(std::uint8_t const* frame, Likeness const& likeness) const {
    std::uint32_t const* const positions = positions_.data() + likeness.units.first;
    Unit const* const masks = masks_.data() + likeness.units.first;
    Unit const* const held = held_.data() + likeness.firstHeld;
    Unit different{};
    for (std::size_t i = 0; i < likeness.units.count; ++i) {
        different |= (load<Unit>(frame + positions[i]) & masks[i]) ^ held[i];
    }
    return (different[0] | different[1]) == 0;
}

inline FrameConclusion* FrameMemory::findNextInTurn(Octets frame, std::uint8_t kind) {
    if (expected_ == kNone) [[unlikely]] {
        return nullptr;
    }
    Likeness& likeness = likenesses_[expected_];
    if (likeness.form != formOf(frame, kind) || !agrees(frame.data(), likeness)) [[unlikely]] {
        return nullptr;
    }
    last_ = expected_;
    expected_ = likeness.successor;
    between_ = kNone;
    trust_ = kMostTrust;
    return &likeness.conclusion;
}

}  // namespace TalIec61850Parser::detail
