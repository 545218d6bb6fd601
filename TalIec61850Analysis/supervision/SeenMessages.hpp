#pragma once

// Internal: which messages of a GOOSE stream have come.

#include <cstddef>
#include <cstdint>
#include <deque>

namespace TalIec61850Analysis::detail {

/// stNum and sqNum of a message.
struct MessageNumber {
    std::uint32_t stNum = 0;
    std::uint32_t sqNum = 0;

    friend bool operator==(MessageNumber const&, MessageNumber const&) = default;
};

/// The steps from one counter to a later one. Counters begin again at 1 after their largest value.
[[nodiscard]] std::uint64_t stepsBetween(std::uint32_t before, std::uint32_t now);

/// Whether a counter is later: the larger one, unless it has just begun again.
[[nodiscard]] bool isLater(std::uint32_t now, std::uint32_t before);

/// Whether a message is later.
[[nodiscard]] bool isLater(MessageNumber now, MessageNumber before);

/// Remembers messages as runs of sqNum. Memory is bounded: of what was forgotten, all that is not
/// before the first counts as seen.
class SeenMessages {
public:
    /// Begins anew.
    void begin(MessageNumber first);
    /// A message later than all others.
    void addNewest(MessageNumber message) {
        if (message.stNum == current_.stNum && message.sqNum == current_.last + 1) [[likely]] {
            current_.last = message.sqNum;
            return;
        }
        keep(current_);
        current_ = {message.stNum, message.sqNum, message.sqNum};
    }
    /// A message that is older.
    void addOlder(MessageNumber message) { keep({message.stNum, message.sqNum, message.sqNum}); }

    [[nodiscard]] bool has(MessageNumber message) const;

private:
    struct Run {
        std::uint32_t stNum = 0;
        std::uint32_t first = 0;
        std::uint32_t last = 0;
    };
    static constexpr std::size_t kMostRuns = 256;

    void keep(Run run);

    MessageNumber first_;
    Run current_;
    std::deque<Run> runs_;
    /// The newest of what was forgotten.
    MessageNumber forgotten_;
    bool isForgetful_ = false;
};

}  // namespace TalIec61850Analysis::detail
