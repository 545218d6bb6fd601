#pragma once

// Internal: what is counted of a stream while it is gone through.

#include <TalIec61850Analysis/samples/Histogram.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/supervision/GooseObservation.hpp>
#include <TalIec61850Analysis/supervision/StreamSummary.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace TalIec61850Analysis::detail {

/// Makes the summary of one stream. Memory is bounded.
class StreamTally {
public:
    /// @param stream  of the index, which must outlive this
    StreamTally(TrafficIndex const& index, std::size_t stream);

    /// A finding of the stream, before it is joined to others, with its places.
    void add(Finding const& finding);

    /// Packets that came one after the other, after those before.
    /// @param arrivals  in nanoseconds, or kNoTime
    void addArrivals(std::span<std::int64_t const> arrivals);
    /// The clock of the capture is set: the time from the packet before to the next one says
    /// nothing.
    void forgetArrival() { arrival_ = kNoTime; }

    /// SV: samples a second.
    void setMeasuredRate(std::optional<double> rate) { summary_.measuredRate = rate; }
    /// SV: a packet has a smpSynch.
    void addSynch(std::uint8_t smpSynch);
    /// SV: how far frames were from their course.
    void addJitter(Histogram const& distances);

    /// GOOSE: a message came.
    /// @param timeAllowedtoLive  in milliseconds; not set where it was cut off
    void addMessage(GooseObservation const& message, std::optional<std::int64_t> timeAllowedtoLive);
    /// GOOSE: how many states there were.
    void setStates(std::uint64_t states) { summary_.states = states; }
    /// Packets that are not marked as copies, and another way brought again.
    void leaveOutCopies(std::uint64_t copies) { summary_.packets -= copies; }

    /// The summary, without what is counted of findings as they are handed on.
    [[nodiscard]] StreamSummary summary() const;

private:
    void addLoss(Finding const& finding);
    void addPause(std::int64_t length) {
        longestPause_ = length > longestPause_ ? length : longestPause_;
    }

    StreamSummary summary_;
    std::int64_t arrival_ = kNoTime;
    /// From packet to packet; negative before there are two.
    std::int64_t longestPause_ = -1;
    /// The loss with the longest pause, and where it ends.
    std::int64_t longestLoss_ = -1;
    std::optional<FindingPlace> lossEnd_;
    std::uint32_t stNum_ = 0;
    std::uint32_t sqNum_ = 0;
    /// Of the message before, in nanoseconds; 0 where it says nothing.
    double life_ = 0;
};

}  // namespace TalIec61850Analysis::detail
