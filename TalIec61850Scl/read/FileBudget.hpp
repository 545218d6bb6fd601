#pragma once

// Internal: how much memory may be taken for what a file says.

#include <cstddef>

namespace TalIec61850Scl::detail {

/// Memory that results of one file may take. It grows with the file, so that a few octets of it
/// cannot ask for all there is. One is for the members of data sets, another for control blocks,
/// addresses and subscribers: large data sets leave room for these.
class FileBudget {
public:
    explicit FileBudget(std::size_t fileSize = 0) : left_(kLeast + fileSize * kTimesTheFile) {}

    /// @return false where there is not so much left, and from then on
    [[nodiscard]] bool take(std::size_t octets) noexcept {
        isSpent_ = isSpent_ || octets > left_;
        left_ -= isSpent_ ? 0 : octets;
        return !isSpent_;
    }
    /// Whether more was asked for than there was.
    [[nodiscard]] bool isSpent() const noexcept { return isSpent_; }

private:
    static constexpr std::size_t kLeast = std::size_t{32} << 20U;
    static constexpr std::size_t kTimesTheFile = 16;

    std::size_t left_;
    bool isSpent_ = false;
};

}  // namespace TalIec61850Scl::detail
