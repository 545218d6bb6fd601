#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace TalIec61850Tools {

/// What a bar counts.
enum class ProgressUnit { octets, packets };

/// How far the reading of all files has come, or the writing of packets.
struct Progress {
    std::uint64_t doneOctets = 0;
    /// Of all files together; 0 if that is not known.
    std::uint64_t totalOctets = 0;
    std::chrono::duration<double> elapsed{};
    /// Packets are counted in place of octets.
    ProgressUnit unit = ProgressUnit::octets;

    /// 0 to 1.
    [[nodiscard]] double fraction() const;
    /// Octets or packets per second so far; none in the first moment.
    [[nodiscard]] std::optional<double> rate() const;
    /// The time that the rest takes at that rate.
    [[nodiscard]] std::optional<std::chrono::seconds> timeLeft() const;
};

/// One line that shows how far the files have been read: the name of the current one, a bar, a
/// percentage, the rate, the time left.
/// @param escapedName  a result of escapeText; a long one loses its start
/// @param columns      of the terminal; the line takes fewer, so that it does not wrap
[[nodiscard]] std::string progressLine(std::string_view escapedName, Progress const& progress,
                                       std::size_t columns);

/// Shows on standard error how far the files have been read, and erases the line at the end.
class ProgressBar {
public:
    /// @param totalOctets  of all files together
    /// @param isShown      false for a bar that does nothing
    ProgressBar(std::uint64_t totalOctets, bool isShown, ProgressUnit unit = ProgressUnit::octets);
    ProgressBar(ProgressBar const&) = delete;
    ProgressBar& operator=(ProgressBar const&) = delete;
    /// Erases the line.
    ~ProgressBar();

    [[nodiscard]] bool isShown() const { return isShown_; }

    /// Continues with the next file.
    /// @param fileName  not escaped
    void startFile(std::string_view fileName, std::uint64_t octets);

    /// Draws the line again if the percentage or the second has changed.
    /// @param fraction  of the current file, 0 to 1
    void show(double fraction);

    /// Counts a packet of the current file, and shows that now and then.
    void countOne() {
        constexpr std::uint64_t packetsPerLook = 256;
        if (isShown_ && ++counted_ % packetsPerLook == 0) {
            show(static_cast<double>(counted_) / static_cast<double>(fileOctets_));
        }
    }

    /// Erases the line, so that a message can be written; the next `show` draws it again.
    void erase();

private:
    using Clock = std::chrono::steady_clock;

    bool isShown_;
    Clock::time_point begin_ = Clock::now();
    std::uint64_t totalOctets_;
    ProgressUnit unit_;
    std::uint64_t counted_ = 0;
    std::uint64_t octetsBefore_ = 0;
    std::uint64_t fileOctets_ = 0;
    std::string escapedName_;
    std::size_t columns_ = 0;
    /// The percentage and the second that were drawn last; empty when there is no line.
    std::optional<std::pair<int, std::int64_t>> drawn_;
};

/// Whether standard error is a terminal, where a bar can be seen.
[[nodiscard]] bool isErrorTerminal();

}  // namespace TalIec61850Tools
