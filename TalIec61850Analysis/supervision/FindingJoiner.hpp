#pragma once

// Internal: findings of one stream that are too many are made one.

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Collects the findings of one stream. Where more than a hundred of one kind begin within a
/// second, that second has one finding in their place: counts and losses are added up, the cause is
/// what all agree on. So are four and more gaps of GOOSE messages in a row, none of which is
/// followed by a message in sequence.
class FindingJoiner {
public:
    /// How many of a kind a second may have.
    static constexpr std::size_t kMost = 100;

    /// @param finding  those of one kind come in the order of their times, about
    void add(Finding finding);

    /// Whether one more of a kind would only be added to others: its cause is not looked at then.
    [[nodiscard]] bool isFlooded(FindingKind kind, std::int64_t from) const;

    /// All findings, in the order of their times; to be called last.
    [[nodiscard]] std::vector<Finding> take();

private:
    struct Second {
        std::int64_t start = kNoTime;
        std::vector<Finding> findings;
        /// Whether the first of them is all of them.
        bool isJoined = false;
    };

    static constexpr std::int64_t kSecond = 1'000'000'000;

    [[nodiscard]] static bool isIn(Second const& second, std::int64_t from);
    void flush(Second& second);

    std::map<FindingKind, Second> seconds_;
    std::vector<Finding> all_;
};

}  // namespace TalIec61850Analysis::detail
