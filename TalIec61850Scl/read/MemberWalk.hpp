#pragma once

// Internal: the values that an object or attribute consists of.

#include <TalIec61850Scl/model/DataSet.hpp>
#include <TalIec61850Scl/read/FileBudget.hpp>
#include <TalIec61850Scl/read/FunctionalConstraint.hpp>
#include <TalIec61850Scl/read/NamedChildren.hpp>
#include <TalIec61850Scl/read/ReadQuantity.hpp>
#include <TalIec61850Scl/read/TypeLeaves.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Scl::detail {

/// A data object or attribute on the way to values.
struct WalkPlace {
    /// DO, SDO, DA or BDA; null at a logical node.
    TypePart const* part = nullptr;
    /// DOI, SDI or DAI; none where the description has none.
    Element instance;
    /// The text for people of the nearest instance that has one.
    std::string_view instanceText;
    /// Likewise, of types.
    std::string_view typeText;
    /// The DOType of the nearest data object, whose units apply; and its instance.
    std::optional<TypeNumber> objectType;
    Element objectInstance;
    /// Whether it is an element of the array that the part is.
    bool isElement = false;
    /// Whether it is of an angle.
    bool isOfAngle = false;
};

/// Steps from data objects to their attributes, and lists values. One for a file.
class MemberWalk {
public:
    /// All have to outlive this object.
    MemberWalk(TypeTable& types, TypeLeaves& leaves, NamedChildren& children, FileBudget& budget)
        : types_(types), leaves_(leaves), children_(children), budget_(budget) {}

    /// A part of where one is.
    [[nodiscard]] WalkPlace enter(WalkPlace const& from, TypePart const& part);
    /// An element of an array.
    [[nodiscard]] WalkPlace enterElement(WalkPlace const& from, WalkPlace const& array,
                                         std::uint32_t index);

    /// Adds the values of a place to a data set.
    /// @param from   where the place is a part of
    /// @param first  its index in a message
    /// @param name   its reference
    /// @param text   of the logical node, for values that have none
    /// @return false where there are more than fit: some are missing then
    [[nodiscard]] bool list(WalkPlace const& from, WalkPlace const& place,
                            FunctionalConstraint constraint, std::string_view constraintText,
                            std::uint32_t first, std::string name, std::string_view text,
                            std::vector<DataSetMember>& members);

private:
    /// Where values go to while they are listed.
    struct Listing {
        FunctionalConstraint constraint;
        std::string_view constraintText;
        std::string_view text;
        std::vector<DataSetMember>& members;
        std::vector<std::uint32_t> path;
        std::string name;
        /// As in DataSetMember.
        std::uint64_t arrays = 0;
    };

    bool listAll(Listing& listing, WalkPlace const& from, WalkPlace const& place, bool isCut);
    bool listParts(Listing& listing, WalkPlace const& place);
    bool addValue(Listing& listing, WalkPlace const& place, bool isKnown);
    void describe(WalkPlace& place);
    [[nodiscard]] Quantity const& quantityOf(WalkPlace const& place);

    TypeTable& types_;
    TypeLeaves& leaves_;
    NamedChildren& children_;
    FileBudget& budget_;

    /// The quantity that was read last, of an object and which of its values.
    Quantity quantity_;
    Element quantityInstance_;
    std::optional<TypeNumber> quantityType_;
    bool quantityIsAngle_ = false;
};

}  // namespace TalIec61850Scl::detail
