#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

#include "bench/Publisher.hpp"

namespace TalBench {

/// One frame on the wire.
struct Sent {
    /// In nanoseconds since the capture began.
    std::uint64_t time;
    /// Valid until the next one is sent.
    TalTest::Bytes const& frame;
    /// The workload's index holds it.
    bool isWanted;
};

/// What comes over the wire, frame by frame; the same in every run and on every machine.
class Traffic {
public:
    explicit Traffic(Publishers publishers) : publishers_(std::move(publishers)) {}
    Traffic(Traffic const&) = delete;
    Traffic& operator=(Traffic const&) = delete;
    virtual ~Traffic() = default;

    [[nodiscard]] virtual Sent next() = 0;

protected:
    [[nodiscard]] std::size_t numPublishers() const { return publishers_.size(); }
    [[nodiscard]] Sent sendFrom(std::size_t publisher, std::uint64_t time) const;

private:
    Publishers publishers_;
};

/// Each publisher once in a cycle, always in the same order, evenly spread over it.
class TakingTurns : public Traffic {
public:
    /// @param cycle  in nanoseconds
    TakingTurns(Publishers publishers, std::uint64_t cycle);

    [[nodiscard]] Sent next() override;

private:
    std::uint64_t cycle_;
    std::uint64_t cycleBegin_ = 0;
    std::size_t turn_ = 0;
};

/// Some take turns; after every few of their frames comes one of another publisher, which is drawn.
class TakingTurnsWithGuests : public Traffic {
public:
    /// @param publishers  first those that take turns, then the guests
    /// @param turns       how many publishers take turns
    /// @param perGuest    frames of those between two of guests
    /// @param interval    between two frames, in nanoseconds
    TakingTurnsWithGuests(Publishers publishers, std::size_t turns, std::size_t perGuest,
                          std::uint64_t interval);

    [[nodiscard]] Sent next() override;

private:
    std::size_t turns_;
    std::size_t perGuest_;
    std::uint64_t interval_;
    std::mt19937_64 generator_;
    std::uint64_t time_ = 0;
    std::size_t turn_ = 0;
    std::size_t sinceGuest_ = 0;
};

/// Who sends next is drawn; each publisher's chance is the same.
class DrawingLots : public Traffic {
public:
    /// @param interval  between two frames, in nanoseconds
    DrawingLots(Publishers publishers, std::uint64_t interval);

    [[nodiscard]] Sent next() override;

private:
    std::mt19937_64 generator_;
    std::uint64_t interval_;
    std::uint64_t time_ = 0;
};

}  // namespace TalBench
