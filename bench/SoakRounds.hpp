#pragma once

#include <TalIec61850Parser/store/Db.hpp>
#include <TalIec61850Parser/store/Timest.hpp>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <random>
#include <vector>

#include "bench/SoakCapture.hpp"

namespace TalBench {

/// What was done in all rounds so far.
struct SoakCounts {
    std::uint64_t rounds = 0;
    std::uint64_t frames = 0;
    std::uint64_t queries = 0;
    std::uint64_t decoded = 0;
};

/// One store that captures are added to and taken from, over and over, as a program does that runs
/// for months. Whatever it answers is compared with what was written.
class SoakRounds {
public:
    /// Writes the captures: SV of 16 streams, GOOSE of 64, 1000 streams of both, and nearly as many
    /// streams as frames.
    SoakRounds();

    /// Indexes every capture, after an attempt that is broken off; asks for time windows and
    /// nearest packets; decodes; clears file by file. Order and questions are drawn by lot.
    /// @param atFullest  called when the store holds everything
    /// @throws std::runtime_error at the first wrong answer
    void run(std::function<void()> const& atFullest);

    [[nodiscard]] SoakCounts const& counts() const { return counts_; }

private:
    void breakOff(SoakCapture const& capture);
    void index(SoakCapture const& capture);
    void queryWindow();
    void queryNearest();
    void decodeSample();
    void clear(SoakCapture const& capture);

    [[nodiscard]] std::size_t draw(std::size_t count);
    [[nodiscard]] SoakCapture const& drawCapture();
    [[nodiscard]] std::size_t packetsOf(SoakCapture const& capture) const;

    // A deque, since captures do not move.
    std::deque<SoakCapture> captures_;
    std::vector<SoakCapture const*> order_;
    TalIec61850Parser::Db db_;
    std::mt19937_64 generator_;
    SoakCounts counts_;
};

}  // namespace TalBench
