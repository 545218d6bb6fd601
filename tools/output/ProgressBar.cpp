#include "tools/output/ProgressBar.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "tools/output/Terminal.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::size_t kBarColumns = 20;
constexpr std::size_t kPercentColumns = 5;                                  // " 100%"
constexpr std::size_t kBarTailColumns = kBarColumns + 3 + kPercentColumns;  // " [...] 100%"
constexpr std::size_t kColumnsForBar = 2 * kBarTailColumns;
constexpr std::chrono::duration<double> kFirstMoment{0.1};
/// A longer time left is not shown.
constexpr double kLongestTimeLeft = 99.0 * 3600.0;

int toPercent(double fraction) { return static_cast<int>(fraction * 100.0); }

std::string clockText(std::chrono::seconds time) {
    std::chrono::hh_mm_ss const clock(time);
    auto const hours = clock.hours().count();
    auto const minutes = clock.minutes().count();
    return hours > 0 ? fmt::format("{}:{:02}:{:02}", hours, minutes, clock.seconds().count())
                     : fmt::format("{}:{:02}", minutes, clock.seconds().count());
}

/// " 512.0 MB/s, 0:07 left"; each part only if it is known.
std::string speedText(Progress const& progress) {
    std::string text;
    if (auto const rate = progress.rate()) {
        text += progress.unit == ProgressUnit::octets ? fmt::format(" {:.1f} MB/s", *rate / 1e6)
                                                      : fmt::format(" {:.0f} packets/s", *rate);
    }
    if (auto const left = progress.timeLeft()) {
        text += fmt::format(", {} left", clockText(*left));
    }
    return text;
}

}  // namespace

double Progress::fraction() const {
    if (totalOctets == 0) {
        return 0.0;
    }
    return std::clamp(static_cast<double>(doneOctets) / static_cast<double>(totalOctets), 0.0, 1.0);
}

std::optional<double> Progress::rate() const {
    if (elapsed < kFirstMoment || doneOctets == 0) {
        return std::nullopt;
    }
    return static_cast<double>(doneOctets) / elapsed.count();
}

std::optional<std::chrono::seconds> Progress::timeLeft() const {
    auto const octetsPerSecond = rate();
    if (!octetsPerSecond || totalOctets < doneOctets) {
        return std::nullopt;
    }
    double const left = static_cast<double>(totalOctets - doneOctets) / *octetsPerSecond;
    if (left > kLongestTimeLeft) {
        return std::nullopt;
    }
    return std::chrono::seconds(std::lround(std::ceil(left)));
}

std::string progressLine(std::string_view escapedName, Progress const& progress,
                         std::size_t columns) {
    int const percent = toPercent(progress.fraction());
    std::size_t const usable = std::max(columns, std::size_t{1}) - 1;
    if (usable < kColumnsForBar) {
        std::size_t const forName = std::max(usable, kPercentColumns) - kPercentColumns;
        return fmt::format("{} {:3}%", keepEnd(escapedName, forName), percent);
    }
    std::string speed = speedText(progress);
    if (usable < kColumnsForBar + speed.size()) {
        speed.clear();
    }
    std::string const done(kBarColumns * static_cast<std::size_t>(percent) / 100, '#');
    return fmt::format("{} [{:.<{}}] {:3}%{}",
                       keepEnd(escapedName, usable - kBarTailColumns - speed.size()), done,
                       kBarColumns, percent, speed);
}

ProgressBar::ProgressBar(std::uint64_t totalOctets, bool isShown, ProgressUnit unit)
    : isShown_(isShown), totalOctets_(totalOctets), unit_(unit) {
    if (isShown_) {
        columns_ = terminalColumns(STDERR_FILENO);
    }
}

ProgressBar::~ProgressBar() { erase(); }

void ProgressBar::startFile(std::string_view fileName, std::uint64_t octets) {
    if (isShown_) {
        erase();
        escapedName_ = escapeText(fileName);
        octetsBefore_ += std::exchange(fileOctets_, octets);
    }
}

void ProgressBar::show(double fraction) {
    if (!isShown_) {
        return;
    }
    double const ofFile = std::clamp(fraction, 0.0, 1.0) * static_cast<double>(fileOctets_);
    Progress const progress{.doneOctets = octetsBefore_ + static_cast<std::uint64_t>(ofFile),
                            .totalOctets = totalOctets_,
                            .elapsed = Clock::now() - begin_,
                            .unit = unit_};
    std::pair const drawing(
        toPercent(progress.fraction()),
        std::chrono::duration_cast<std::chrono::seconds>(progress.elapsed).count());
    if (drawn_ != drawing) {
        std::string const line = progressLine(escapedName_, progress, columns_);
        // A shorter line leaves nothing of the longer one before it.
        fmt::print(stderr, "\r{:<{}}", line, columns_ - 1);
        drawn_ = drawing;
    }
}

void ProgressBar::erase() {
    if (std::exchange(drawn_, std::nullopt)) {
        // Blanks, not an escape sequence: any terminal understands them.
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(columns_ - 1), "");
    }
}

bool isErrorTerminal() { return ::isatty(STDERR_FILENO) == 1; }

}  // namespace TalIec61850Tools
