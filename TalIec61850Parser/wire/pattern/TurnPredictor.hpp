#pragma once

// Internal: predicts which pattern comes next, because publishers mostly take turns.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser::wire {

/// Learns in which order patterns follow one another. A pattern that comes between two that keep
/// their order does not disturb the order.
class TurnPredictor {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    /// The pattern whose turn it is; kNone while predictions mostly fail.
    [[nodiscard]] std::uint32_t expected() const { return expected_; }

    /// The expected pattern has come.
    /// @pre expected() is not kNone
    void confirm() {
        last_ = expected_;
        expected_ = successors_[expected_];
        outOfTurn_ = kNone;
        trust_ = kMaxTrust;
    }

    /// A pattern has come that was not confirmed.
    void note(std::uint32_t pattern) {
        if (pattern >= successors_.size()) {
            successors_.resize(std::size_t{pattern} + 1, kNone);
        }
        if (last_ == kNone) {
            last_ = pattern;
            return;
        }
        std::uint32_t& successor = successors_[last_];
        trust_ = std::clamp(trust_ + (successor == pattern ? 1 : -1), -kMaxTrust, kMaxTrust);
        if (successor == kNone) {
            successor = pattern;
        }
        if (successor == pattern) {
            last_ = pattern;
            outOfTurn_ = kNone;
        } else if (outOfTurn_ == kNone) {
            outOfTurn_ = pattern;
        } else {
            successor = outOfTurn_;
            successors_[outOfTurn_] = pattern;
            last_ = pattern;
            outOfTurn_ = kNone;
        }
        expected_ = trust_ < 0 ? kNone : successors_[last_];
    }

private:
    /// How many failures in a row end a prediction that has never failed.
    static constexpr int kMaxTrust = 8;

    std::uint32_t last_ = kNone;       // the one that had its turn last
    std::uint32_t expected_ = kNone;   // its successor, as long as turns are to be trusted
    std::uint32_t outOfTurn_ = kNone;  // the one that came out of turn after it
    int trust_ = 0;
    std::vector<std::uint32_t> successors_;
};

}  // namespace TalIec61850Parser::wire
