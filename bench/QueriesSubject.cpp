#include <fmt/format.h>

#include <TalIec61850Parser/store/Sv.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "support/StationDevice.hpp"

namespace TalBench {

using TalIec61850Parser::Package;
using TalIec61850Parser::PackageFile;
using TalIec61850Parser::Sv;
using TalIec61850Parser::Timest;

namespace {

constexpr std::size_t windowSize = 100;
/// So many that the memory they lead to is more than the caches hold for long.
constexpr std::size_t numPlaces = std::size_t{1} << 16;

struct Window {
    Timest from;
    Timest to;
};

/// A stream of one file, and windows at places drawn in it.
class Series {
public:
    /// @param digits  the stream has 10 to this power packets
    explicit Series(int digits)
        : digits_(digits), file_(stream_.addFile("capture.pcap")), packages_(file_->packages) {
        std::uint64_t packets = 1;
        for (int digit = 0; digit < digits; ++digit) {
            packets *= 10;
        }
        for (std::uint64_t packet = 0; packet < packets; ++packet) {
            addPacket(packet);
        }
        drawWindows();
    }
    Series(Series const&) = delete;
    Series& operator=(Series const&) = delete;

    [[nodiscard]] Sv const& stream() const { return stream_; }
    [[nodiscard]] std::deque<Package> const& packages() const { return packages_; }
    [[nodiscard]] std::vector<Window> const& windows() const { return windows_; }

    /// The name of a contender that asks this series.
    [[nodiscard]] std::string contender(std::string_view query) const {
        return fmt::format("{}-{}", query, digits_);
    }
    /// The number of packets as the table shows it.
    [[nodiscard]] std::string size() const { return fmt::format("10^{}", digits_); }

private:
    void addPacket(std::uint64_t packet) {
        constexpr std::uint64_t frameOnDisk = 142;
        std::uint64_t const time = packet * TalTest::stationGrid;
        auto const seconds = static_cast<unsigned>(time / TalTest::second);
        file_->addPackage(TalTest::stationStart + seconds,
                          static_cast<unsigned>(time % TalTest::second), packet * frameOnDisk);
    }

    void drawWindows() {
        std::mt19937_64 generator(61850);
        for (std::size_t i = 0; i < numPlaces; ++i) {
            std::size_t const place = generator() % (packages_.size() - windowSize + 1);
            windows_.push_back({packages_[place].time, packages_[place + windowSize - 1].time});
        }
    }

    int digits_;
    Sv stream_;
    PackageFile const* file_;
    std::deque<Package> const& packages_;
    std::vector<Window> windows_;
};

auto firstNotBefore(Series const& series, Timest const& time) {
    return std::ranges::lower_bound(series.packages(), time, {}, &Package::time);
}

/// A contender that asks for one window after the other.
/// @param ask  takes a Window; whatever it returns, the compiler takes to be used
template <typename Ask>
Race::Body windowByWindow(Series const& series, Ask ask) {
    return [&series, ask](benchmark::State& state) {
        std::size_t next = 0;
        for (auto _ : state) {
            auto answer = ask(series, series.windows()[next]);
            benchmark::DoNotOptimize(answer);
            next = (next + 1) % numPlaces;
        }
    };
}

auto window(Series const& series, Window const& asked) {
    auto answer = series.stream().getfilteredPackages(asked.from, asked.to);
    if (answer.size() != 1 || answer.begin()->second.size() != windowSize) {
        throw std::logic_error("a window does not hold the packets it should");
    }
    return answer;
}

auto windowByHand(Series const& series, Window const& asked) {
    auto packet = firstNotBefore(series, asked.from);
    std::vector<Package const*> answer;
    answer.reserve(windowSize);
    for (std::size_t i = 0; i < windowSize; ++i, ++packet) {
        answer.push_back(&*packet);
    }
    return answer;
}

auto nearest(Series const& series, Window const& asked) {
    return series.stream().findFilesNearestPackageIterator(asked.from);
}

auto nearestByHand(Series const& series, Window const& asked) {
    return firstNotBefore(series, asked.from);
}

}  // namespace

void measureQueries(Settings const& settings) {
    std::deque<Series> all;
    Race race("queries");
    for (int const digits : {4, 5, 6, 7}) {
        Series const& series = all.emplace_back(digits);
        race.addShort(series.contender("window"), windowByWindow(series, window));
        race.addShort(series.contender("window-by-hand"), windowByWindow(series, windowByHand));
        race.addShort(series.contender("nearest"), windowByWindow(series, nearest));
        race.addShort(series.contender("nearest-by-hand"), windowByWindow(series, nearestByHand));
    }
    auto taken = race.run(settings.rounds);
    for (Series const& series : all) {
        printRatio(fmt::format("window of 100 in {} / lower_bound, copy", series.size()),
                   taken[series.contender("window")], taken[series.contender("window-by-hand")]);
    }
    auto const printGrowth = [&](std::string_view text, std::string_view query) {
        printRatio(fmt::format("{}: 10^7 packets / 10^4 packets", text),
                   taken[all.back().contender(query)], taken[all.front().contender(query)]);
    };
    printGrowth("window of 100", "window");
    printGrowth("lower_bound, copy", "window-by-hand");
    for (Series const& series : all) {
        printRatio(fmt::format("nearest packet in {} / lower_bound", series.size()),
                   taken[series.contender("nearest")], taken[series.contender("nearest-by-hand")]);
    }
    printGrowth("nearest packet", "nearest");
    printGrowth("lower_bound", "nearest-by-hand");
}

}  // namespace TalBench
