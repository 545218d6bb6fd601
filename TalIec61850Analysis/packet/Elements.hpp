#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/packet/Sink.hpp>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>

namespace TalIec61850Analysis {

class Elements;

/// One BER element of a frame (X.690, one identifier octet, definite length of at most four length
/// octets), or the octets that make none. Points into the frame.
struct ElementView {
    /// Index in the frame of its first octet.
    std::size_t offset = 0;
    /// The identifier octet; not set where the octets make no element at all.
    std::optional<std::uint8_t> tag;
    /// The value, as much of it as was captured. Where there is no tag, everything up to the end of
    /// what the element is in.
    Octets octets;
    /// Index in the frame of the first octet of the value.
    std::size_t valueOffset = 0;
    /// Index in the frame of the end that the element has by its own length.
    std::size_t claimedEnd = 0;
    /// Why the element is not whole.
    std::optional<FaultKind> fault;

    /// Index in the frame of what follows what was captured of the element.
    [[nodiscard]] std::size_t end() const noexcept { return valueOffset + octets.size(); }
    /// The elements that its value is made of.
    [[nodiscard]] Elements members() const noexcept;
};

/// Takes elements without a list of them.
using ElementSink = Sink<ElementView>;

/// The elements of one nesting level: a forward range that reads as it goes on, and allocates
/// nothing. Damage ends the level: its rest is the last element.
class Elements {
public:
    class Iterator;

    /// The end of a level that no length gives.
    static constexpr std::size_t kNoEnd = std::numeric_limits<std::size_t>::max();

    Elements() = default;
    /// @param octets      the level, as far as it was captured; must outlive the elements
    /// @param offset      index in the frame of the first of them
    /// @param claimedEnd  index in the frame of the end that the level has by its own length
    explicit Elements(Octets octets, std::size_t offset = 0,
                      std::size_t claimedEnd = kNoEnd) noexcept
        : octets_(octets), offset_(offset), claimedEnd_(claimedEnd) {}

    /// The first, or the end where there is none.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT Iterator begin() const noexcept;
    /// What ends the range.
    [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

    /// Whether there is none.
    [[nodiscard]] bool empty() const noexcept { return octets_.empty(); }
    /// The octets of the level, as far as they were captured.
    [[nodiscard]] Octets octets() const noexcept { return octets_; }
    /// Index in the frame of the first octet.
    [[nodiscard]] std::size_t offset() const noexcept { return offset_; }

private:
    Octets octets_;
    std::size_t offset_ = 0;
    std::size_t claimedEnd_ = kNoEnd;
};

/// Where a walk over the range is: a forward iterator of the standard library.
class Elements::Iterator {
public:
    /// @cond
    using iterator_category = std::forward_iterator_tag;
    using value_type = ElementView;
    using difference_type = std::ptrdiff_t;
    using pointer = ElementView const*;
    using reference = ElementView const&;

    Iterator() = default;

    [[nodiscard]] reference operator*() const noexcept { return element_; }
    [[nodiscard]] pointer operator->() const noexcept { return &element_; }
    TALIEC61850ANALYSIS_EXPORT Iterator& operator++() noexcept;
    Iterator operator++(int) noexcept {
        Iterator const old = *this;
        ++*this;
        return old;
    }
    /// Both are of one level.
    friend bool operator==(Iterator const& a, Iterator const& b) noexcept {
        return a.rest_.size() == b.rest_.size();
    }
    friend bool operator==(Iterator const& a, std::default_sentinel_t /*end*/) noexcept {
        return a.rest_.empty();
    }
    /// @endcond

private:
    friend class Elements;

    Iterator(Octets rest, std::size_t offset, std::size_t levelEnd) noexcept;
    /// Reads the element at the start of the rest, if there is one.
    void read(std::size_t offset) noexcept;

    /// From the element on.
    Octets rest_;
    std::size_t levelEnd_ = 0;
    ElementView element_;
};

inline Elements ElementView::members() const noexcept {
    return Elements(octets, valueOffset, claimedEnd);
}

}  // namespace TalIec61850Analysis
