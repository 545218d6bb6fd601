#pragma once

#include <TalIec61850Analysis/packet/DataKind.hpp>
#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Scl/Export.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace TalIec61850Scl {

/// Why members of a data set have no more names from some value on.
enum class BindingEnd : std::uint8_t {
    none,         ///< all members are bound, and there is no other value
    fewerValues,  ///< the message has fewer values than the data set
    moreValues,   ///< the message has more
    otherType,    ///< a value is of another type than the member, or of another width
    notCaptured,  ///< a snap length cut the values
};

/// Which value of a message is which member of a data set.
struct MemberBinding {
    /// How many members are bound: the first ones of the data set.
    std::size_t bound = 0;
    /// Why no more.
    BindingEnd end = BindingEnd::none;
    /// Where the two part: the path of the first value, or member, without a counterpart. Empty
    /// where they do not.
    std::vector<std::uint32_t> endPath;
    /// What the message has there; not set where it has nothing.
    std::optional<TalIec61850Analysis::DataKind> found;

    /// The member at a place of the message.
    /// @param dataSet  that the binding was made of
    /// @param path     by index from 0, the outermost first, as in MemberChange
    /// @return null where that value has no name
    [[nodiscard]] TALIEC61850SCL_EXPORT DataSetMember const* memberAt(
        DataSet const& dataSet, std::span<std::uint32_t const> path) const noexcept;
};

/// Compares the values of a GOOSE message with the members of its data set, by number, nesting, in
/// structures or arrays, and type (IEC 61850-8-1: which tag a basic type has), see `fits`. A member
/// whose type is not known is bound to any value. Takes time in the number of values and members,
/// whatever they are.
///
/// What a snap length cut off exactly between two values of the data set itself looks like a
/// message of fewer values.
/// @param dataSet  what the message should hold
/// @param allData  what it holds
[[nodiscard]] TALIEC61850SCL_EXPORT MemberBinding
bindMembers(DataSet const& dataSet, TalIec61850Analysis::DataViews const& allData);

/// Whether a value may be of a basic type: by its kind, the range of numbers, the bits of a bit
/// string, the format of a floating-point number. What makes no value of its kind is of no type,
/// but for the unknown one, of which any value may be.
[[nodiscard]] TALIEC61850SCL_EXPORT bool fits(BasicType type,
                                              TalIec61850Analysis::DataView const& value) noexcept;

/// Whether a value may be that of a member: by its basic type, and of texts and octets by the
/// length that its type has as a number: VisString32, Octet6.
[[nodiscard]] TALIEC61850SCL_EXPORT bool fits(DataSetMember const& member,
                                              TalIec61850Analysis::DataView const& value) noexcept;

/// Which octets of a sample are which member of a data set.
struct SampleBinding {
    /// What seqData is: certain, since it is described. Its rest is what comes from a member of
    /// unknown width on.
    TalIec61850Analysis::SampleLayout layout;
    /// How many members are bound: the first ones of the data set.
    std::size_t bound = 0;
    /// For each channel of the layout: the number of the member that is its value.
    std::vector<std::size_t> channelMembers;
};

/// Lays the members of a data set over seqData (IEC 61850-9-2: one after the other, without tags),
/// as far as their widths are known: where one begins is not known after a type of unknown width.
/// @param dataSet  what the samples should hold
/// @param size     of seqData, in octets
/// @return not set where the members take another number of octets, or the width of the first one
///         is not known
[[nodiscard]] TALIEC61850SCL_EXPORT std::optional<SampleBinding> bindSamples(DataSet const& dataSet,
                                                                             std::size_t size);

/// Octets that the members of a data set take in a sample; not set where the width of a type is not
/// known.
[[nodiscard]] TALIEC61850SCL_EXPORT std::optional<std::size_t> sampleSize(DataSet const& dataSet);

/// Octets that they take at least: those members whose type has a known width.
[[nodiscard]] TALIEC61850SCL_EXPORT std::size_t leastSampleSize(DataSet const& dataSet);

}  // namespace TalIec61850Scl
