#pragma once

// Internal: what was looked at in a frame, and so what the result of its walk depends on.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser::detail {

using wire::Octets;

/// Which octets of a frame were looked at on its way through the plain walk.
///
/// Every octet is assumed to matter until `passOver` says otherwise, so a missing call makes the
/// fast lane slower, never wrong. Two kinds of octets are skipped conditionally, see `readAgain`
/// and `endAt`.
class WalkTrace {
public:
    /// Octets of the frame.
    struct Part {
        /// In the frame, of the first one.
        std::size_t index = 0;
        std::size_t size = 0;
    };

    /// Starts a frame, of which no octet has been passed over.
    /// @param frame  outlives what is said about it
    void begin(Octets frame) {
        frame_ = frame;
        mask_.assign(frame.size(), kLookedAt);
        number_ = {};
        tail_ = {};
    }

    /// No frame.
    void reset() { frame_ = {}; }

    /// Nothing depends on what these octets hold.
    /// @param octets  part of the frame
    void passOver(Octets octets) {
        Part const part = partOf(octets);
        std::fill_n(mask_.begin() + static_cast<std::ptrdiff_t>(part.index), part.size,
                    kPassedOver);
    }

    /// A number was read here that nothing depends on; it is to be read anew in a frame of the same
    /// pattern. Only
    /// the last such number counts.
    void readAgain(Octets octets) {
        passOver(octets);
        number_ = partOf(octets);
    }

    /// These octets, which follow the PDU, were passed over all the way to the end of the walk. In
    /// a frame of the same pattern the walk ends the same way if it passes over them there too.
    void endAt(Octets octets) {
        passOver(octets);
        tail_ = partOf(octets);
    }

    /// Empty when none was begun.
    [[nodiscard]] Octets frame() const { return frame_; }
    /// For each octet of the frame 0xFF when it was looked at, 0 when it was passed over.
    [[nodiscard]] Octets mask() const { return mask_; }
    /// See `readAgain`; empty when there is no such number.
    [[nodiscard]] Part number() const { return number_; }
    /// See `endAt`; empty when there are no such octets.
    [[nodiscard]] Part tail() const { return tail_; }

private:
    static constexpr std::uint8_t kLookedAt = 0xFF;
    static constexpr std::uint8_t kPassedOver = 0;

    [[nodiscard]] Part partOf(Octets octets) const {
        if (octets.empty()) {
            return {};
        }
        return {.index = static_cast<std::size_t>(octets.data() - frame_.data()),
                .size = octets.size()};
    }

    Octets frame_;
    std::vector<std::uint8_t> mask_;
    Part number_;
    Part tail_;
};

}  // namespace TalIec61850Parser::detail
