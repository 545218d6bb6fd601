#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/BinaryTime.hpp>
#include <TalIec61850Analysis/packet/BitString.hpp>
#include <TalIec61850Analysis/packet/DataKind.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/ObjectId.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <variant>

namespace TalIec61850Analysis {

struct DataView;

/// The values of a data set, or those inside a structure or array: a forward range of DataView that
/// decodes a value when it comes to it, and allocates nothing.
class DataViews {
public:
    class Iterator;

    DataViews() = default;
    /// @param elements  the values
    /// @param depth     theirs, 1 for the data set itself
    explicit DataViews(Elements const& elements, std::size_t depth = 1) noexcept
        : elements_(elements), depth_(depth) {}

    /// The first, or the end where there is none.
    [[nodiscard]] Iterator begin() const noexcept;
    /// What ends the range.
    [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }
    /// Whether there is none.
    [[nodiscard]] bool empty() const noexcept { return elements_.empty(); }

    /// The octets of the values, as far as they were captured.
    [[nodiscard]] Octets octets() const noexcept { return elements_.octets(); }

    /// Hands on all that is wrong with the values and those inside them, front to back.
    TALIEC61850ANALYSIS_EXPORT void visitFaults(FaultSink sink) const;

private:
    Elements elements_;
    std::size_t depth_ = 1;
};

/// One value of a data set (ISO 9506-2, Data). Points into the frame.
struct DataView {
    /// All that a value can hold.
    using Content =
        std::variant<Octets, bool, BitStringView, std::int64_t, std::uint64_t, float, double,
                     std::string_view, BinaryTime, UtcTime, ObjectIdView, DataViews>;

    /// Index in the frame of its identifier octet.
    std::size_t offset = 0;
    /// The identifier octet.
    std::uint8_t tag = 0;
    /// By the tag.
    DataKind kind = DataKind::unknown;
    /// Why the value is not what its kind should hold; mostly it is then octets.
    std::optional<FaultKind> fault;
    /// By the kind:
    ///
    /// - array, structure: DataViews; Octets beyond the depth that is read
    /// - boolean: bool
    /// - bitString, booleanArray: BitStringView
    /// - integer, unsignedNumber, bcd: std::int64_t; std::uint64_t above its range; Octets beyond
    ///   64 bits
    /// - floatingPoint: float or double
    /// - octetString, unknown: Octets
    /// - visibleString, mmsString: std::string_view, octet for octet
    /// - binaryTime: BinaryTime; utcTime: UtcTime; objectId: ObjectIdView
    /// - unreadable: Octets, from the identifier to the end of what the value is in
    ///
    /// Any kind holds its Octets where they make no value of it, or are not all there.
    Content value;
};

/// Decodes one value.
/// @param element  the value's
/// @param depth    its depth, 1 for a value of the data set itself
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT DataView viewData(ElementView const& element,
                                                           std::size_t depth = 1) noexcept;

/// Where a walk over the range is: a forward iterator of the standard library.
class DataViews::Iterator {
public:
    /// @cond
    using iterator_category = std::input_iterator_tag;
    using iterator_concept = std::forward_iterator_tag;
    using value_type = DataView;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = DataView;

    Iterator() = default;

    [[nodiscard]] DataView operator*() const noexcept { return viewData(*element_, depth_); }
    Iterator& operator++() noexcept {
        ++element_;
        return *this;
    }
    Iterator operator++(int) noexcept {
        Iterator const old = *this;
        ++*this;
        return old;
    }
    /// Both are of one range.
    friend bool operator==(Iterator const& a, Iterator const& b) noexcept {
        return a.element_ == b.element_;
    }
    friend bool operator==(Iterator const& a, std::default_sentinel_t end) noexcept {
        return a.element_ == end;
    }
    /// @endcond

private:
    friend class DataViews;

    Iterator(Elements::Iterator const& element, std::size_t depth) noexcept
        : element_(element), depth_(depth) {}

    Elements::Iterator element_;
    std::size_t depth_ = 1;
};

inline DataViews::Iterator DataViews::begin() const noexcept { return {elements_.begin(), depth_}; }

}  // namespace TalIec61850Analysis
