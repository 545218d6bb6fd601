#pragma once

// Internal: how many values a type has, and which of its parts lead to them.

#include <TalIec61850Scl/read/FunctionalConstraint.hpp>
#include <TalIec61850Scl/read/TypeTable.hpp>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace TalIec61850Scl::detail {

/// Levels that types are nested in at most; those of IEC 61850 have up to six.
inline constexpr std::uint32_t kMostTypeLevels = 24;
/// Values of a data set at most. A frame has 65,600 octets at most, and a value takes two.
inline constexpr std::uint32_t kMostMembers = 32'768;

/// A part that has values of a functional constraint.
struct SelectedPart {
    /// Its number in the type.
    std::uint32_t part = 0;
    /// Whether its own parts are left out, since they are nested too deep: it is one value of an
    /// unknown type then.
    bool isCut = false;
};

/// Of a type, what a functional constraint leads to.
struct Selection {
    /// Values; more than kMostMembers are not told apart.
    std::uint32_t leaves = 0;
    /// Levels of types, its own one too.
    std::uint32_t levels = 1;
    /// In the order of the document.
    std::vector<SelectedPart> parts;
    /// Whether all of it is there: not while it is being made.
    bool isMade = false;
};

/// Selections, each made once: what expanding types takes is in proportion to the types and to the
/// values that come of it, however the types hold each other.
class TypeLeaves {
public:
    /// All have to outlive this object.
    TypeLeaves(TypeTable& types, Document const& document, DiagnosticList& diagnostics)
        : types_(types), document_(document), diagnostics_(diagnostics) {}

    /// The selection of a type. It stays where it is.
    [[nodiscard]] Selection const& of(TypeNumber type, FunctionalConstraint constraint) {
        return make(type, constraint, 1);
    }

private:
    Selection const& make(TypeNumber type, FunctionalConstraint constraint, std::uint32_t level);
    void add(Selection& selection, std::uint32_t number, TypePart const& part,
             FunctionalConstraint constraint, std::uint32_t level);

    TypeTable& types_;
    Document const& document_;
    DiagnosticList& diagnostics_;
    /// By number of the type and constraint.
    std::unordered_map<std::uint64_t, Selection> selections_;
};

}  // namespace TalIec61850Scl::detail
