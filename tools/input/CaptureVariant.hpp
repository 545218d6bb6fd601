#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace TalIec61850Tools {

/// What the first octets of a classic capture say of its records.
struct CaptureVariant {
    bool isNanosecond = false;
    bool isLittleEndian = false;
};

/// What a file is by its first octets.
struct CaptureKind {
    /// Set when the library indexes such a file.
    std::optional<CaptureVariant> variant;
    bool isNextGeneration = false;
};

/// The octets of a file that `recogniseCapture` looks at.
inline constexpr std::size_t kCaptureStartSize = 12;

/// Tells a classic capture, whose records the library reads, from anything else.
/// @param start  the file's first octets, zeros where it has fewer
[[nodiscard]] CaptureKind recogniseCapture(std::span<std::uint8_t const, kCaptureStartSize> start);

}  // namespace TalIec61850Tools
