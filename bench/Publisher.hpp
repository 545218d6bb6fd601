#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "support/Bytes.hpp"

namespace TalBench {

/// A sender of frames. Making the next one takes nanoseconds: frames are built seldom, and what
/// changes from one to the next is written into them where it is.
class Publisher {
public:
    /// @param isWanted  the workload's index holds what this one sends
    explicit Publisher(bool isWanted) : isWanted_(isWanted) {}
    Publisher(Publisher const&) = delete;
    Publisher& operator=(Publisher const&) = delete;
    virtual ~Publisher() = default;

    /// The next frame; valid until the next call.
    [[nodiscard]] virtual TalTest::Bytes const& send() = 0;

    [[nodiscard]] bool isWanted() const { return isWanted_; }

private:
    bool isWanted_;
};

using Publishers = std::vector<std::unique_ptr<Publisher>>;

/// Sends one frame again and again.
class RepeatedFrame : public Publisher {
public:
    RepeatedFrame(bool isWanted, TalTest::Bytes frame)
        : Publisher(isWanted), frame_(std::move(frame)) {}

    [[nodiscard]] TalTest::Bytes const& send() override { return frame_; }

private:
    TalTest::Bytes frame_;
};

}  // namespace TalBench
