#pragma once

// Internal: recognises frames that agree with an earlier one in every significant octet.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <TalIec61850Parser/wire/pattern/PatternTable.hpp>
#include <TalIec61850Parser/wire/pattern/TurnPredictor.hpp>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser::wire {

/// Remembers what came of frames, by their patterns.
///
/// It does not interpret frames; the caller supplies the mask of significant octets and the result
/// to return. When full it stops learning, and after kResetThreshold misses it clears itself.
/// @tparam Result  a small value; the memory knows nothing of it
template <typename Result>
class FrameMemory {
public:
    /// Larger frames are not remembered.
    static constexpr std::size_t kMaxFrameSize = PatternTable::kMaxFrameSize;
    static constexpr std::size_t kMaxPatterns = PatternTable::kMaxPatterns;
    /// Unknown frames after which a full memory clears itself: several times as many as filled it.
    static constexpr std::size_t kResetThreshold = 4 * kMaxPatterns;

    /// The result of the pattern whose turn it is, if this frame matches it; otherwise null. Most
    /// publishers take turns, so that this finds most frames, and sooner than `find`.
    /// @param variety  what tells frames apart besides their octets
    /// @return valid until another operation is called
    [[nodiscard]] Result* findNextInTurn(Octets frame, std::uint8_t variety) {
        std::uint32_t const pattern = turns_.expected();
        if (pattern == TurnPredictor::kNone || !table_.matches(pattern, frame, variety))
            [[unlikely]] {
            return nullptr;
        }
        turns_.confirm();
        return &results_[pattern];
    }

    /// The result of the pattern whose turn it is next; null when that is not known.
    /// @return valid until another operation is called
    [[nodiscard]] Result const* nextInTurn() const {
        std::uint32_t const pattern = turns_.expected();
        return pattern == TurnPredictor::kNone ? nullptr : &results_[pattern];
    }

    /// The result of the pattern that this frame matches; null when there is none.
    /// @param variety  what tells frames apart besides their octets
    /// @return valid until another operation is called
    [[nodiscard]] Result* find(Octets frame, std::uint8_t variety) {
        std::uint32_t const pattern = table_.find(frame, variety);
        if (pattern == PatternTable::kNone) {
            return nullptr;
        }
        turns_.note(pattern);
        return &results_[pattern];
    }

    /// Whether nothing is remembered.
    [[nodiscard]] bool isEmpty() const { return table_.isEmpty(); }

    /// Whether a frame that was not found should be remembered. Asked once for each such frame: a
    /// full memory that has been of too little use is cleared here.
    [[nodiscard]] bool wantsMore() {
        if (table_.isFull() && ++missesSinceFull_ > kResetThreshold) {
            *this = FrameMemory();
        }
        return !table_.isFull();
    }

    /// Remembers a frame that `find` does not know, if there is room.
    /// @param mask  0xFF for each significant octet of the frame, 0 for the others
    /// @return the remembered result, valid until another operation is called; null when the frame
    ///         was not taken in
    Result* remember(Octets frame, Octets mask, std::uint8_t variety, Result const& result) {
        std::uint32_t const pattern = table_.add(frame, mask, variety);
        if (pattern == PatternTable::kNone) {
            return nullptr;
        }
        results_.push_back(result);
        turns_.note(pattern);
        return &results_.back();
    }

private:
    TurnPredictor turns_;
    PatternTable table_;
    // By the number of the pattern.
    std::vector<Result> results_;
    std::size_t missesSinceFull_ = 0;
};

}  // namespace TalIec61850Parser::wire
