#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <TalIec61850Scl/read/ReadStation.hpp>
#include <cstddef>
#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "bench/LargeStation.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "support/TempFile.hpp"

namespace TalBench {

void measureDescriptions(Settings const& settings) {
    constexpr std::size_t kOctets = 50'000'000;
    std::string const text = largeStation(kOctets / settings.divisor);
    TalTest::TempFile const file(TalTest::Bytes(text.begin(), text.end()), "station.scd");
    std::vector<std::string> const paths{file.path()};
    std::size_t const controlBlocks = TalIec61850Scl::readStation(paths).controlBlocks.size();

    Race race("scl");
    race.add("pugixml", text.size(), [&](benchmark::State& state) {
        for ([[maybe_unused]] auto const iteration : state) {
            pugi::xml_document document;
            if (!document.load_file(file.path().c_str())) {
                state.SkipWithError("not parsed");
                break;
            }
            benchmark::DoNotOptimize(document);
        }
    });
    race.add("station", text.size(), [&](benchmark::State& state) {
        for ([[maybe_unused]] auto const iteration : state) {
            auto const station = TalIec61850Scl::readStation(paths);
            if (station.controlBlocks.size() != controlBlocks || !station.diagnostics.empty()) {
                state.SkipWithError("not the station");
                break;
            }
        }
    });
    auto taken = race.run(settings.rounds);
    printRatio("scl: station of 50 MB / parsed by pugixml", taken["station"], taken["pugixml"]);
}

}  // namespace TalBench
