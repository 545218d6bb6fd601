#pragma once

// Internal: what decoders of capture files tell: some records at a time, and what is wrong.

#include <TalIec61850Analysis/file/CaptureDamage.hpp>
#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// A longer frame is damage: no link has such frames, and memory stays within bounds.
inline constexpr std::size_t kLongestFrame = std::size_t{2} << 20U;
/// A longer block is passed over: there is room for the longest frame, and for options.
inline constexpr std::size_t kLongestBlock = kLongestFrame + (std::size_t{1} << 20U);

/// Records are decoded some at a time, so that handing one over is cheap, whatever the format.
class WalkedRecords {
public:
    static constexpr std::size_t kBatch = 64;
    static constexpr std::size_t kMostDamages = 100;

    [[nodiscard]] bool isFull() const { return count_ == kBatch; }
    [[nodiscard]] bool isEmpty() const { return count_ == 0; }
    [[nodiscard]] RecordView const* begin() const { return views_.data(); }
    [[nodiscard]] RecordView const* end() const { return views_.data() + count_; }

    /// For the records that follow.
    void clear() { count_ = 0; }

    /// Makes room for one more; what is there is of an earlier one.
    /// @pre not isFull()
    [[nodiscard]] RecordView& add() { return views_[count_++]; }

    /// Damage that is passed over.
    void note(CaptureDamage const& damage) {
        ++damageCount_;
        if (damages_.size() < kMostDamages) {
            damages_.push_back(damage);
        }
    }

    /// Nothing follows.
    void finish() { isFinished_ = true; }

    /// Damage after which nothing can be read.
    void finish(CaptureDamage const& damage) {
        note(damage);
        final_ = damage;
        isFinished_ = true;
    }

    /// A last record that the file ends inside.
    void setCut(RecordView const& view) { cut_ = view; }

    [[nodiscard]] bool isFinished() const { return isFinished_; }
    [[nodiscard]] std::optional<CaptureDamage> const& final() const { return final_; }
    [[nodiscard]] std::vector<CaptureDamage> const& damages() const { return damages_; }
    [[nodiscard]] std::uint64_t damageCount() const { return damageCount_; }
    [[nodiscard]] RecordView const* cut() const { return cut_ ? &*cut_ : nullptr; }

private:
    std::array<RecordView, kBatch> views_{};
    std::size_t count_ = 0;
    bool isFinished_ = false;
    std::vector<CaptureDamage> damages_;
    std::uint64_t damageCount_ = 0;
    std::optional<CaptureDamage> final_;
    std::optional<RecordView> cut_;
};

}  // namespace TalIec61850Analysis::detail
