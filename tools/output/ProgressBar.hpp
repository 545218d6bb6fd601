#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// One line that shows how far a file has been read: its name, a bar, a percentage.
/// @param escapedName  as escapeText gave it; what is too long loses its beginning
/// @param fraction     0 to 1
/// @param columns      of the terminal; the line takes fewer, so that it does not wrap
[[nodiscard]] std::string progressLine(std::string_view escapedName, double fraction,
                                       std::size_t columns);

/// Shows on standard error how far one file has been read, and leaves nothing behind.
class ProgressBar {
public:
    /// @param fileName  as it was given; escaped here
    /// @param isShown   false for a bar that does nothing at all
    ProgressBar(std::string_view fileName, bool isShown);
    ProgressBar(ProgressBar const&) = delete;
    ProgressBar& operator=(ProgressBar const&) = delete;
    /// Erases the line.
    ~ProgressBar();

    /// Draws the line anew when the percentage has changed.
    /// @param fraction  0 to 1
    void show(double fraction);

private:
    bool isShown_;
    std::string escapedName_;
    std::size_t columns_ = 0;
    std::optional<int> shownPercent_;
};

/// Whether standard error is a terminal, so that there is somebody to see a bar.
[[nodiscard]] bool isErrorTerminal();

}  // namespace TalIec61850Tools
