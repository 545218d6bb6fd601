#pragma once

// Internal: what was looked at in a frame, and so what the conclusions from it depend on.

#include <TalIec61850Parser/wire/Octets.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TalIec61850Parser::detail {

using wire::Octets;

/// Which octets of a frame were looked at on its way through the plain walk.
///
/// Every octet counts as looked at until somebody says that it was passed over: who forgets to say
/// so costs time, never truth. Two places are passed over with a reservation, see `readAgain` and
/// `endAt`.
class WalkTrace {
public:
    /// Octets of the frame, counted from its begin.
    struct Part {
        std::size_t position = 0;
        std::size_t size = 0;
    };

    /// Begins a frame, of which no octet has been passed over.
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
        std::fill_n(mask_.begin() + static_cast<std::ptrdiff_t>(part.position), part.size,
                    kPassedOver);
    }

    /// A number was read here that nothing depends on; in a like frame it is to be read again. Only
    /// the last such number counts.
    void readAgain(Octets octets) {
        passOver(octets);
        number_ = partOf(octets);
    }

    /// These octets, which follow the PDU, were passed over all the way to the end of the walk. A
    /// like frame comes to the same end if the walk passes over them there too.
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
        return {.position = static_cast<std::size_t>(octets.data() - frame_.data()),
                .size = octets.size()};
    }

    Octets frame_;
    std::vector<std::uint8_t> mask_;
    Part number_;
    Part tail_;
};

}  // namespace TalIec61850Parser::detail
