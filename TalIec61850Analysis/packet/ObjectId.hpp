#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <vector>

namespace TalIec61850Analysis {

/// An object identifier: the numbers of its dotted form.
struct ObjectId {
    /// From the first on.
    std::vector<std::uint64_t> arcs;

    /// Member by member.
    friend bool operator==(ObjectId const&, ObjectId const&) = default;
};

/// The same as a forward range of std::uint64_t over the octets of a frame.
class ObjectIdView {
public:
    class Iterator;

    /// An identifier of no numbers.
    ObjectIdView() = default;

    /// The first, or the end where there is none.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT Iterator begin() const noexcept;
    /// What ends the range.
    [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

private:
    friend TALIEC61850ANALYSIS_EXPORT std::optional<ObjectIdView> readObjectId(
        Octets octets) noexcept;

    explicit ObjectIdView(Octets octets) noexcept : octets_(octets) {}

    Octets octets_;
};

/// Where a walk over the range is: a forward iterator of the standard library.
class ObjectIdView::Iterator {
public:
    /// @cond
    using iterator_category = std::input_iterator_tag;
    using iterator_concept = std::forward_iterator_tag;
    using value_type = std::uint64_t;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = std::uint64_t;

    Iterator() = default;

    [[nodiscard]] std::uint64_t operator*() const noexcept { return arc_; }
    TALIEC61850ANALYSIS_EXPORT Iterator& operator++() noexcept;
    Iterator operator++(int) noexcept {
        Iterator const old = *this;
        ++*this;
        return old;
    }
    /// Both are of one identifier.
    friend bool operator==(Iterator const& a, Iterator const& b) noexcept {
        return a.rest_.size() == b.rest_.size() && a.second_ == b.second_ && a.isEnd_ == b.isEnd_;
    }
    friend bool operator==(Iterator const& a, std::default_sentinel_t /*end*/) noexcept {
        return a.isEnd_;
    }
    /// @endcond

private:
    friend class ObjectIdView;

    explicit Iterator(Octets octets) noexcept;

    /// The octets after those of the arc.
    Octets rest_;
    std::uint64_t arc_ = 0;
    /// The second arc, while the iterator is at the first: one number holds both.
    std::optional<std::uint64_t> second_;
    bool isEnd_ = true;
};

/// Reads the value octets of an OBJECT IDENTIFIER; nothing where there are none, or a number does
/// not end, starts with seven zero bits, or takes more than 64 bits.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<ObjectIdView> readObjectId(
    Octets octets) noexcept;

/// A copy with octets of its own.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT ObjectId toOwned(ObjectIdView const& id);

}  // namespace TalIec61850Analysis
