#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "support/Bytes.hpp"
#include "support/Station.hpp"

// Times in the station are nanoseconds since its capture began.

namespace TalTest {

inline constexpr std::uint64_t microsecond = 1'000;
inline constexpr std::uint64_t millisecond = 1'000'000;
inline constexpr std::uint64_t second = 1'000'000'000;

/// When the capture begins: 2024-03-20 10:00:00 UTC.
inline constexpr std::uint32_t stationStart = 1'710'928'800;

/// Whatever the station does, it does on a grid of 250 us, the interval of the samples. A device
/// sends at a phase of its own behind the grid, so that no two frames have the same time.
inline constexpr std::uint64_t stationGrid = 250 * microsecond;

inline constexpr std::uint64_t firstFault = 250 * millisecond;
inline constexpr std::uint64_t faultInterval = 4 * second;
inline constexpr std::uint64_t faultDuration = 100 * millisecond;

/// Whether the line is faulted at this time.
[[nodiscard]] inline bool isFaulted(std::uint64_t time) {
    return time >= firstFault && (time - firstFault) % faultInterval < faultDuration;
}

/// A sender of frames, which come at times it knows beforehand.
class StationDevice {
public:
    /// @param phase  how long behind the grid the device sends, less than the grid's step
    explicit StationDevice(std::uint64_t phase) : phase_(phase) {}
    StationDevice(StationDevice const&) = delete;
    StationDevice& operator=(StationDevice const&) = delete;
    virtual ~StationDevice() = default;

    /// When the next frame is sent.
    [[nodiscard]] std::uint64_t nextTime() const { return time_ + phase_; }

    /// The next frame, valid until the next call; moves on to the one after it.
    [[nodiscard]] virtual Bytes const& send() = 0;

    /// What the device publishes, its counts not filled; nullopt when that is neither GOOSE nor SV.
    [[nodiscard]] std::optional<StationStream> const& stream() const { return stream_; }

protected:
    /// On the grid: the phase is not in it, so copies of one frame are equal but for their lane.
    std::uint64_t time_ = 0;
    std::optional<StationStream> stream_ = {};

private:
    std::uint64_t phase_;
};

using StationDevices = std::vector<std::unique_ptr<StationDevice>>;

}  // namespace TalTest
