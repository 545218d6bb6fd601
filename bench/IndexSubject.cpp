#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "bench/CaptureOnDisk.hpp"
#include "bench/Passes.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"

namespace TalBench {

namespace {

constexpr std::array<std::string_view, 4> withTshark = {"sv16", "goose64", "sv8asdu", "mix1000"};
constexpr std::array<std::string_view, 2> withProgress = {"sv16", "mix1000"};
/// tshark takes seconds.
constexpr std::uint64_t tsharkFrames = 200'000;

bool contains(auto const& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

}  // namespace

void measureIndex(std::string_view name, Settings const& settings) {
    Workload const listed = workload(name);
    Workload const whole = withFrames(listed, listed.frames / settings.divisor);
    Workload const cut = withFrames(listed, tsharkFrames / settings.divisor);
    bool const asksTshark = settings.withPrograms && contains(withTshark, name) && hasTshark();
    bool const reports = contains(withProgress, name);

    CaptureOnDisk const capture(whole);
    auto const forTshark =
        asksTshark ? std::make_unique<CaptureOnDisk>(cut) : std::unique_ptr<CaptureOnDisk>();
    Race race(whole.name);
    race.add("read", capture.frames(), readPass(capture.path()));
    race.add("libpcap", capture.frames(), libpcapPass(capture.path(), capture.frames()));
    race.add("index", capture.frames(), indexPass(capture.path(), whole.filter, capture.packets()));
    if (reports) {
        race.add("progress", capture.frames(),
                 indexPass(capture.path(), whole.filter, capture.packets(), [](double) {}));
    }
    if (forTshark) {
        race.add("tshark", forTshark->frames(), tsharkPass(forTshark->path()), kTsharkRounds);
    }

    auto taken = race.run(settings.rounds);
    printRatio(fmt::format("{}: index / libpcap", name), taken["index"], taken["libpcap"]);
    printRatio(fmt::format("{}: index / read(2)", name), taken["index"], taken["read"]);
    if (forTshark) {
        printRatio(fmt::format("{}: index / tshark", name), taken["index"], taken["tshark"]);
    }
    if (reports) {
        printRatio(fmt::format("{}: index with progress / without", name), taken["progress"],
                   taken["index"]);
    }
}

void measureIndexes(Settings const& settings) {
    for (Workload const& each : workloads()) {
        if (!each.name.starts_with("streams-")) {
            measureIndex(each.name, settings);
        }
    }
}

}  // namespace TalBench
