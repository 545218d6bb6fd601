#pragma once

// Internal: the logical nodes of an IED, by their names.

#include <TalIec61850Scl/read/Element.hpp>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace TalIec61850Scl::detail {

/// A logical node's name in its device: prefix, class and instance.
[[nodiscard]] std::string logicalNodeName(std::string_view prefix, std::string_view lnClass,
                                          std::string_view inst);

/// The class of a logical node: what its attribute says, and LLN0 of an LN0 that has none.
[[nodiscard]] std::string_view lnClassOf(Element node, std::string_view lnClass);

/// What names a logical node in its IED. Leads into the document.
struct LogicalNodeKey {
    std::string_view ldInst;
    std::string_view prefix;
    std::string_view lnClass;
    std::string_view inst;

    friend bool operator==(LogicalNodeKey const&, LogicalNodeKey const&) = default;
};

/// Finds logical nodes. An index is made when one is first asked for.
class LogicalNodes {
public:
    explicit LogicalNodes(Element ied) : ied_(ied) {}

    /// The logical node of a name; none where there is none.
    [[nodiscard]] Element find(LogicalNodeKey const& key);

private:
    struct Hash {
        [[nodiscard]] std::size_t operator()(LogicalNodeKey const& key) const;
    };

    void index(Element device);

    Element ied_;
    bool isIndexed_ = false;
    std::unordered_map<LogicalNodeKey, Element, Hash> nodes_;
};

}  // namespace TalIec61850Scl::detail
