#pragma once

// Internal: control blocks by themselves.

#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <TalIec61850Scl/read/DiagnosticList.hpp>
#include <TalIec61850Scl/read/Document.hpp>
#include <string_view>

namespace TalIec61850Scl::detail {

/// Where a control block is: in an IED, a device and a logical node.
struct ControlBlockScope {
    std::string_view ied;
    std::string_view ldInst;
    /// The device's name on the wire.
    std::string_view domain;
    std::string_view node;
    /// Whether the description is of the second edition or later.
    bool isEdition2 = false;
};

/// Whether an element is a GSEControl of GOOSE, or a SampledValueControl.
[[nodiscard]] bool isControlBlock(Element element);

/// Reads one, all but its address, its data set's number, and those that listen by its data.
[[nodiscard]] ControlBlock readControlBlock(Element element, ControlBlockScope const& scope,
                                            Document const& document, DiagnosticList& diagnostics);

}  // namespace TalIec61850Scl::detail
