#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <numeric>
#include <vector>

#include "bench/JudgedFrames.hpp"
#include "bench/MemoryProbe.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"

namespace TalBench {

namespace {

Race::Body judge(JudgedFrame const& judged) {
    return [&judged](benchmark::State& state) {
        for (auto _ : state) {
            bool const verdict =
                TalIec61850Parser::EthernetParser::parsePacketSimple(judged.frame, judged.filter);
            if (verdict != judged.verdict) {
                state.SkipWithError("the frame was misjudged");
                return;
            }
        }
    };
}

/// What a program takes at least that looks at every octet of a frame.
Race::Body addUp(JudgedFrame const& judged) {
    return [&frame = judged.frame](benchmark::State& state) {
        for (auto _ : state) {
            auto const* octets = frame.data();
            benchmark::DoNotOptimize(octets);
            auto sum = std::accumulate(octets, octets + frame.size(), 0U);
            benchmark::DoNotOptimize(sum);
        }
    };
}

}  // namespace

void measureJudge(Settings const& settings) {
    auto const all = judgedFrames();
    Race race("judge");
    for (JudgedFrame const& judged : all) {
        race.addShort(judged.name, judge(judged));
        race.addShort(judged.name + "-sum", addUp(judged));
    }
    auto taken = race.run(settings.rounds);
    for (JudgedFrame const& judged : all) {
        printRatio(judged.text + " / adding up its octets", taken[judged.name],
                   taken[judged.name + "-sum"]);
    }
    for (auto const& [text, allocations] : allocationsOfJudging()) {
        printNumber(text + ": allocations per frame", allocations);
    }
}

}  // namespace TalBench
