#pragma once

// Captures built for tests of the index that is true to the wire.

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"

namespace TalTest {

inline constexpr std::uint32_t kTrafficStart = 1'700'000'000;

/// A capture with nanoseconds whose frames come a millisecond after one another, unless said.
class TrafficCapture {
public:
    explicit TrafficCapture(std::uint32_t linkType = linkTypeEthernet)
        : builder_(CaptureVariant::nanoLittle, linkType) {}

    TrafficCapture& add(Bytes const& frame) {
        addAt(time_, frame);
        return *this;
    }
    TrafficCapture& add(Ethernet const& ethernet, GooseMessage const& message) {
        return add(gooseFrame(ethernet, message));
    }
    TrafficCapture& add(Ethernet const& ethernet, SvMessage const& message) {
        return add(svFrame(ethernet, message));
    }
    /// @param time  in nanoseconds after the start; the next frame is a millisecond later
    TrafficCapture& addAt(std::uint64_t time, Bytes const& frame) {
        builder_.add(seconds(time), nanoseconds(time), frame);
        time_ = time + kStep;
        return *this;
    }
    TrafficCapture& addSnapped(std::size_t size, Bytes const& frame) {
        builder_.addSnapped(seconds(time_), nanoseconds(time_), static_cast<std::uint32_t>(size),
                            frame);
        time_ += kStep;
        return *this;
    }

    [[nodiscard]] Bytes const& bytes() const { return builder_.bytes(); }
    /// Where the next frame will be in the file.
    [[nodiscard]] std::uint64_t nextFrameOffset() const {
        return builder_.nextRecordPosition() + recordHeaderSize;
    }
    /// The index of what was added so far.
    [[nodiscard]] TalIec61850Analysis::TrafficIndex index(
        TalIec61850Analysis::TrafficOptions const& options = {}) const {
        TempFile const file(bytes());
        return TalIec61850Analysis::indexCapture(file.path(), options);
    }

private:
    static constexpr std::uint64_t kStep = 1'000'000;
    static constexpr std::uint64_t kSecond = 1'000'000'000;

    static std::uint32_t seconds(std::uint64_t time) {
        return kTrafficStart + static_cast<std::uint32_t>(time / kSecond);
    }
    static std::uint32_t nanoseconds(std::uint64_t time) {
        return static_cast<std::uint32_t>(time % kSecond);
    }

    CaptureBuilder builder_;
    std::uint64_t time_ = 0;
};

/// The time of a packet that was added so many nanoseconds after the start.
[[nodiscard]] inline std::int64_t trafficTime(std::uint64_t time) {
    return std::int64_t{kTrafficStart} * 1'000'000'000 + static_cast<std::int64_t>(time);
}

/// The names of all streams, in their order.
[[nodiscard]] inline std::vector<std::string> streamNames(
    TalIec61850Analysis::TrafficIndex const& index) {
    std::vector<std::string> names;
    for (auto const& stream : index.streams()) names.push_back(stream.key.name);
    return names;
}

}  // namespace TalTest
