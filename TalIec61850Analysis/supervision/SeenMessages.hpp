#pragma once

// Internal: which messages of a GOOSE stream have come.

#include <TalIec61850Analysis/traffic/MessageOrder.hpp>
#include <cstddef>
#include <cstdint>
#include <deque>

namespace TalIec61850Analysis::detail {

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
