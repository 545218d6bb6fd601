#pragma once

// Internal: elements found by the names that they have inside another.

#include <TalIec61850Scl/read/Element.hpp>
#include <TalIec61850Scl/read/NameHash.hpp>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace TalIec61850Scl::detail {

/// Finds children by their attribute `name`, in constant time on average however many there are:
/// the first few are compared, and of an element with more an index is kept. Of several of a name,
/// the first one counts.
class NamedChildren {
public:
    /// @param element  the child's own name: DataSet
    /// @return none where there is none
    [[nodiscard]] Element find(Element parent, std::string_view element, std::string_view name);
    /// A value of an instance: DOI, SDI or DAI.
    /// @param index  the text of its ix, of an element of an array; else empty
    /// @return none where there is none
    [[nodiscard]] Element findInstance(Element parent, std::string_view name,
                                       std::string_view index);

private:
    /// By what identifies a child.
    using Index = NameMap<std::string, Element>;

    /// By the identity of the parent.
    std::unordered_map<std::size_t, Index> named_;
    std::unordered_map<std::size_t, Index> instances_;
};

}  // namespace TalIec61850Scl::detail
