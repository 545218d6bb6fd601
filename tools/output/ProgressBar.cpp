#include "tools/output/ProgressBar.hpp"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

namespace {

constexpr std::size_t kBarColumns = 20;
constexpr std::size_t kPercentColumns = 5;                               // " 100%"
constexpr std::size_t kTailColumns = kBarColumns + 3 + kPercentColumns;  // " [...] 100%"
constexpr std::size_t kColumnsForBar = 2 * kTailColumns;
constexpr std::size_t kUnknownColumns = 80;

int toPercent(double fraction) { return static_cast<int>(std::clamp(fraction, 0.0, 1.0) * 100.0); }

std::size_t terminalColumns() {
    winsize size{};
    bool const isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : kUnknownColumns;
}

}  // namespace

std::string progressLine(std::string_view escapedName, double fraction, std::size_t columns) {
    int const percent = toPercent(fraction);
    std::size_t const usable = std::max(columns, std::size_t{1}) - 1;
    if (usable < kColumnsForBar) {
        std::size_t const forName = std::max(usable, kPercentColumns) - kPercentColumns;
        return fmt::format("{} {:3}%", keepEnd(escapedName, forName), percent);
    }
    std::string const done(kBarColumns * static_cast<std::size_t>(percent) / 100, '#');
    return fmt::format("{} [{:.<{}}] {:3}%", keepEnd(escapedName, usable - kTailColumns), done,
                       kBarColumns, percent);
}

ProgressBar::ProgressBar(std::string_view fileName, bool isShown) : isShown_(isShown) {
    if (isShown_) {
        escapedName_ = escapeText(fileName);
        columns_ = terminalColumns();
    }
}

ProgressBar::~ProgressBar() {
    if (shownPercent_) {
        // Blanks, not an escape sequence: any terminal understands them.
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(columns_ - 1), "");
    }
}

void ProgressBar::show(double fraction) {
    int const percent = toPercent(fraction);
    if (!isShown_ || shownPercent_ == percent) {
        return;
    }
    std::string const line = "\r" + progressLine(escapedName_, fraction, columns_);
    std::fwrite(line.data(), 1, line.size(), stderr);
    shownPercent_ = percent;
}

bool isErrorTerminal() { return ::isatty(STDERR_FILENO) == 1; }

}  // namespace TalIec61850Tools
