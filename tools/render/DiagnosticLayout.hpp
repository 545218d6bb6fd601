#pragma once

#include <TalIec61850Scl/model/StationDescription.hpp>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// Something that is wrong with a description. What it points to must outlive it.
struct DiagnosticRow {
    TalIec61850Scl::Diagnostic const* diagnostic = nullptr;
    TalIec61850Scl::StationDescription const* station = nullptr;
};

/// How diagnostics are written. Names and order of the fields are stable.
///
///     code     text     such as MissingLNodeType
///     file     text     the description
///     line     integer  null where it is not known
///     subject  text     what it is about, as the file writes it
[[nodiscard]] RowLayout<DiagnosticRow> diagnosticLayout();

}  // namespace TalIec61850Tools
