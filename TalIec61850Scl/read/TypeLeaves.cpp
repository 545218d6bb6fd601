#include <TalIec61850Scl/read/TypeLeaves.hpp>
#include <algorithm>

namespace TalIec61850Scl::detail {

// NOLINTNEXTLINE(misc-no-recursion): types are cut at kMostTypeLevels
Selection const& TypeLeaves::make(TypeNumber type, FunctionalConstraint constraint,
                                  std::uint32_t level) {
    std::uint64_t const key = (std::uint64_t{type} << 8U) | constraint;
    // References to values of the map stay valid while others are added.
    auto const [found, isNew] = selections_.try_emplace(key);
    Selection& selection = found->second;
    if (!isNew) {
        return selection;
    }
    std::vector<TypePart> const& parts = types_.parts(type);
    for (std::uint32_t number = 0; number < parts.size(); ++number) {
        TypePart const& part = parts[number];
        if (part.isObject || (part.constraint && (*part.constraint == kAnyConstraint ||
                                                  *part.constraint == constraint))) {
            add(selection, number, part, constraint, level);
        }
    }
    if (parts.empty() && constraint == kAnyConstraint) {
        selection.leaves = 1;  // a Struct of nothing takes its place in a message all the same
    }
    selection.isMade = true;
    return selection;
}

// NOLINTNEXTLINE(misc-no-recursion)
void TypeLeaves::add(Selection& selection, std::uint32_t number, TypePart const& part,
                     FunctionalConstraint constraint, std::uint32_t level) {
    std::uint64_t leaves = 1;
    bool isCut = false;
    if (part.isCompound() && part.type) {
        isCut = level >= kMostTypeLevels;
        if (!isCut) {
            Selection const& inner =
                make(*part.type, part.isObject ? constraint : kAnyConstraint, level + 1);
            isCut = !inner.isMade || inner.levels >= kMostTypeLevels;
            if (!isCut) {
                leaves = inner.leaves;
                selection.levels = std::max(selection.levels, inner.levels + 1);
            }
        }
        if (isCut) {
            diagnostics_.addOnce(DiagnosticCode::nestingTooDeep, document_.placeOf(part.element),
                                 part.element.nameIn("type"));
        }
    }
    if (leaves > 0) {
        leaves *= part.count.value_or(1);
        selection.leaves = static_cast<std::uint32_t>(
            std::min<std::uint64_t>(selection.leaves + leaves, kMostMembers + 1));
        selection.parts.push_back({.part = number, .isCut = isCut});
    }
}

}  // namespace TalIec61850Scl::detail
