#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/ChannelSample.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

namespace TalIec61850Analysis {

/// One ASDU (IEC 61850-9-2), seen in its frame. A field that does not occur whole is not set; one
/// that does not make a value of its type holds its octets.
struct AsduView {
    /// The ASDU (30), as much of it as was captured.
    ElementView element;

    /// The stream.
    std::optional<std::string_view> svID;
    /// The data set.
    std::optional<std::string_view> datSet;
    // Numbers without a sign, whatever their width; one that is not the standard's has a fault.
    std::optional<ReadableView<std::uint64_t>> smpCnt;    ///< two octets
    std::optional<ReadableView<std::uint64_t>> confRev;   ///< four octets
    std::optional<ReadableView<UtcTime>> refrTm;          ///< eight octets
    std::optional<ReadableView<std::uint64_t>> smpSynch;  ///< one octet
    std::optional<ReadableView<std::uint64_t>> smpRate;   ///< two octets
    /// The sample.
    std::optional<SamplesView> seqData;
    std::optional<ReadableView<std::uint64_t>> smpMod;  ///< two octets
    /// Of the clock; eight octets.
    std::optional<Octets> gmIdentity;

    /// Hands on the elements that no field takes, in their order: unknown, repeated or damaged
    /// ones.
    TALIEC61850ANALYSIS_EXPORT void visitOthers(ElementSink sink) const;

    /// Hands on all that is wrong, front to back.
    TALIEC61850ANALYSIS_EXPORT void visitFaults(FaultSink sink) const;
};

/// Reads an ASDU, as many of its fields as were captured. Nothing is allocated.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT AsduView viewAsdu(ElementView const& element) noexcept;

/// The ASDUs of a message: a forward range of AsduView that reads an ASDU when it comes to it, and
/// allocates nothing.
class AsduViews {
public:
    class Iterator;

    AsduViews() = default;
    /// @param elements  those of the sequence of ASDU; any that is none is passed over
    explicit AsduViews(Elements const& elements) noexcept : elements_(elements) {}

    /// The first, or the end where there is none.
    [[nodiscard]] Iterator begin() const noexcept;
    /// What ends the range.
    [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

private:
    Elements elements_;
};

/// Where a walk over the range is: a forward iterator of the standard library.
class AsduViews::Iterator {
public:
    /// @cond
    using iterator_category = std::input_iterator_tag;
    using iterator_concept = std::forward_iterator_tag;
    using value_type = AsduView;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = AsduView;

    Iterator() = default;

    [[nodiscard]] AsduView operator*() const noexcept { return viewAsdu(*element_); }
    Iterator& operator++() noexcept {
        ++element_;
        passOverOthers();
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
    friend class AsduViews;

    explicit Iterator(Elements::Iterator const& element) noexcept : element_(element) {
        passOverOthers();
    }

    TALIEC61850ANALYSIS_EXPORT void passOverOthers() noexcept;

    Elements::Iterator element_;
};

inline AsduViews::Iterator AsduViews::begin() const noexcept { return Iterator(elements_.begin()); }

}  // namespace TalIec61850Analysis
