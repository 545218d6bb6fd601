#include "bench/Traffic.hpp"

namespace TalBench {

namespace {

constexpr std::uint64_t seed = 61850;

}  // namespace

Sent Traffic::sendFrom(std::size_t publisher, std::uint64_t time) const {
    Publisher& sender = *publishers_[publisher];
    return {.time = time, .frame = sender.send(), .isWanted = sender.isWanted()};
}

TakingTurns::TakingTurns(Publishers publishers, std::uint64_t cycle)
    : Traffic(std::move(publishers)), cycle_(cycle) {}

Sent TakingTurns::next() {
    std::size_t const turn = turn_;
    std::uint64_t const time = cycleBegin_ + turn * cycle_ / numPublishers();
    if (++turn_ == numPublishers()) {
        turn_ = 0;
        cycleBegin_ += cycle_;
    }
    return sendFrom(turn, time);
}

TakingTurnsWithGuests::TakingTurnsWithGuests(Publishers publishers, std::size_t turns,
                                             std::size_t perGuest, std::uint64_t interval)
    : Traffic(std::move(publishers)),
      turns_(turns),
      perGuest_(perGuest),
      interval_(interval),
      generator_(seed) {}

Sent TakingTurnsWithGuests::next() {
    time_ += interval_;
    if (sinceGuest_ == perGuest_) {
        sinceGuest_ = 0;
        return sendFrom(turns_ + generator_() % (numPublishers() - turns_), time_);
    }
    ++sinceGuest_;
    std::size_t const turn = turn_;
    turn_ = (turn_ + 1) % turns_;
    return sendFrom(turn, time_);
}

DrawingLots::DrawingLots(Publishers publishers, std::uint64_t interval)
    : Traffic(std::move(publishers)), generator_(seed), interval_(interval) {}

Sent DrawingLots::next() {
    time_ += interval_;
    // Not a distribution of the standard library: those draw differently from one to the next.
    return sendFrom(generator_() % numPublishers(), time_);
}

}  // namespace TalBench
