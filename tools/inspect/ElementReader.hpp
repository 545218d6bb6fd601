#pragma once

// Internal: the one place that reads elements out of a frame, be it cut short or damaged.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "tools/inspect/Fault.hpp"
#include "tools/inspect/OctetString.hpp"
#include "tools/inspect/RawElement.hpp"

namespace TalIec61850Tools {

/// The octets of one nesting level, as far as they were captured.
struct Level {
    OctetString octets;
    /// Index in the frame of the first of them.
    std::size_t offset = 0;
    /// Index in the frame of the end that the level has by its own length; the frame itself could
    /// have been of any size.
    std::size_t claimedEnd = std::numeric_limits<std::size_t>::max();
};

/// One element, or the octets that make none.
struct Element {
    /// Index in the frame of the identifier octet.
    std::size_t offset = 0;
    /// Not set where the octets make no element; `value` is then all of them.
    std::optional<std::uint8_t> tag;
    Level value;
    /// Why the element is not whole.
    std::optional<FaultKind> fault;
};

/// Hands on the elements of a level one by one. Damage ends the level: its rest is the last
/// element.
class ElementReader {
public:
    explicit ElementReader(Level level) : level_(std::move(level)) {}

    /// The next element; nothing at the end.
    [[nodiscard]] std::optional<Element> next();

    /// Index in the frame of what is read next.
    [[nodiscard]] std::size_t offset() const { return level_.offset + position_; }

private:
    [[nodiscard]] Element cutElement(std::size_t start, std::size_t stopped);
    [[nodiscard]] Element rest(std::size_t start, FaultKind fault);

    Level level_;
    std::size_t position_ = 0;
};

/// The element as it is kept where nothing reads it.
[[nodiscard]] RawElement toRaw(Element&& element);

}  // namespace TalIec61850Tools
