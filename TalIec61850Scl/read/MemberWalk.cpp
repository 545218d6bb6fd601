#include <TalIec61850Scl/read/MemberWalk.hpp>
#include <utility>

namespace TalIec61850Scl::detail {

namespace {

bool isNumber(BasicType type) {
    return (type >= BasicType::int8 && type <= BasicType::int32u) || type == BasicType::float32 ||
           type == BasicType::float64;
}

/// Whether a value is in the units of its object: the parts of an AnalogueValue, and attributes
/// that are the object's own value. Counts of pulses are not.
bool isInUnits(TypePart const& part) {
    std::string_view const name = part.name;
    return isNumber(part.basicType) && (name == "i" || name == "f" || name == "stVal" ||
                                        name == "setVal" || name == "ctlVal" || name == "subVal");
}

std::string indexText(std::uint32_t index) { return std::to_string(index); }

}  // namespace

void MemberWalk::describe(WalkPlace& place) {
    if (auto const text = place.instance.textIn("desc"); !text.empty()) {
        place.instanceText = text;
    } else if (place.part->isObject && place.instance) {
        // The text of dU describes a data object.
        auto const value = children_.findInstance(place.instance, "dU", "").configuredValue();
        if (!value.empty()) {
            place.instanceText = value;
        }
    }
    if (!place.part->desc.empty()) {
        place.typeText = place.part->desc;
    } else if (place.part->isObject && place.part->type) {
        TypePart const* const described = types_.part(*place.part->type, "dU");
        auto const value = described != nullptr ? described->element.configuredValue() : "";
        if (!value.empty()) {
            place.typeText = value;
        }
    }
}

WalkPlace MemberWalk::enter(WalkPlace const& from, TypePart const& part) {
    WalkPlace place = from;
    place.part = &part;
    place.isElement = false;
    place.instance = children_.findInstance(from.instance, part.name, "");
    if (part.isObject) {
        place.objectType = part.type;
        place.objectInstance = place.instance;
        place.isOfAngle = false;
    } else if (part.name == "ang") {
        place.isOfAngle = true;
    }
    describe(place);
    return place;
}

WalkPlace MemberWalk::enterElement(WalkPlace const& from, WalkPlace const& array,
                                   std::uint32_t index) {
    WalkPlace place = array;
    place.isElement = true;
    Element const own = children_.findInstance(from.instance, array.part->name, indexText(index));
    if (own) {
        place.instance = own;
        if (place.part->isObject) {
            place.objectInstance = own;
        }
        describe(place);
    }
    return place;
}

bool MemberWalk::list(WalkPlace const& from, WalkPlace const& place,
                      FunctionalConstraint constraint, std::string_view constraintText,
                      std::uint32_t first, std::string name, std::string_view text,
                      std::vector<DataSetMember>& members) {
    Listing listing{.constraint = constraint,
                    .constraintText = constraintText,
                    .text = text,
                    .members = members,
                    .path = {first},
                    .name = std::move(name)};
    return listAll(listing, from, place, false);
}

// The levels of types are bounded by TypeLeaves.
// NOLINTNEXTLINE(misc-no-recursion)
bool MemberWalk::listAll(Listing& listing, WalkPlace const& from, WalkPlace const& place,
                         bool isCut) {
    TypePart const& part = *place.part;
    if (part.count && !place.isElement) {
        std::size_t const size = listing.name.size();
        std::uint64_t const arrays = listing.arrays;
        listing.arrays |= std::uint64_t{1} << (listing.path.size() - 1);
        for (std::uint32_t index = 0; index < *part.count; ++index) {
            listing.name.append("(").append(indexText(index)).append(")");
            listing.path.push_back(index);
            bool const isListed = listAll(listing, from, enterElement(from, place, index), isCut);
            listing.path.pop_back();
            listing.name.resize(size);
            if (!isListed) {
                return false;
            }
        }
        listing.arrays = arrays;
        return true;
    }
    if (part.isCompound() && part.type && !isCut) {
        return listParts(listing, place);
    }
    return addValue(listing, place, !part.isCompound());
}

// NOLINTNEXTLINE(misc-no-recursion): as above
bool MemberWalk::listParts(Listing& listing, WalkPlace const& place) {
    TypeNumber const type = *place.part->type;
    Selection const& selection =
        leaves_.of(type, place.part->isObject ? listing.constraint : kAnyConstraint);
    if (selection.parts.empty() && selection.leaves > 0) {
        return addValue(listing, place, false);
    }
    std::size_t const size = listing.name.size();
    std::uint32_t index = 0;
    for (SelectedPart const& selected : selection.parts) {
        TypePart const& part = types_.parts(type)[selected.part];
        listing.name.append(1, '.').append(part.name);
        listing.path.push_back(index++);
        bool const isListed = listAll(listing, place, enter(place, part), selected.isCut);
        listing.path.pop_back();
        listing.name.resize(size);
        if (!isListed) {
            return false;
        }
    }
    return true;
}

Quantity const& MemberWalk::quantityOf(WalkPlace const& place) {
    if (quantityType_ != place.objectType || !(quantityInstance_ == place.objectInstance) ||
        quantityIsAngle_ != place.isOfAngle) {
        quantity_ = readQuantity(types_, children_, *place.objectType, place.objectInstance,
                                 place.isOfAngle ? QuantityPart::angle : QuantityPart::value);
        quantityType_ = place.objectType;
        quantityInstance_ = place.objectInstance;
        quantityIsAngle_ = place.isOfAngle;
    }
    return quantity_;
}

bool MemberWalk::addValue(Listing& listing, WalkPlace const& place, bool isKnown) {
    if (listing.members.size() >= kMostMembers) {
        return false;
    }
    std::string_view const text = !place.instanceText.empty() ? place.instanceText
                                  : !place.typeText.empty()   ? place.typeText
                                                              : listing.text;
    TypePart const& part = *place.part;
    Quantity const* const quantity =
        isKnown && place.objectType && isInUnits(part) ? &quantityOf(place) : nullptr;
    if (!budget_.take(sizeof(DataSetMember) + listing.name.size() + text.size() +
                      listing.path.size() * sizeof(std::uint32_t) + part.bType.size() +
                      (quantity != nullptr ? quantity->unit.size() : 0))) {
        return false;
    }
    DataSetMember& member = listing.members.emplace_back();
    member.path = listing.path;
    member.arrays = listing.arrays;
    member.name = listing.name;
    member.fc = listing.constraintText;
    member.desc = text;
    if (isKnown) {
        member.bType = part.bType;
        member.type = part.basicType;
    }
    if (quantity != nullptr) {
        member.unit = quantity->unit;
        if (part.name == "i") {
            member.scale = quantity->scale;
        }
    }
    return true;
}

}  // namespace TalIec61850Scl::detail
