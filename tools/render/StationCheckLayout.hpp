#pragma once

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Scl/match/CheckStation.hpp>
#include <TalIec61850Scl/model/StationDescription.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/output/RowLines.hpp"
#include "tools/render/DifferenceText.hpp"

namespace TalIec61850Tools {

/// How a control block and captures agree, with what it is told by. All that it points to must
/// outlive it.
struct StationCheckRow {
    TalIec61850Scl::StationRow const* row = nullptr;
    TalIec61850Analysis::TrafficIndex const* index = nullptr;
    TalIec61850Scl::StationDescription const* station = nullptr;
    /// Names of the captures, by the numbers of the files.
    std::vector<std::string> const* files = nullptr;
    /// In a table, the one of the differences that the line is about.
    std::optional<std::size_t> difference;

    /// Null where the stream is not described.
    [[nodiscard]] TalIec61850Scl::ControlBlock const* block() const;
    /// Null where it is missing.
    [[nodiscard]] TalIec61850Analysis::TrafficStream const* stream() const;
    [[nodiscard]] Protocol protocol() const;
    /// One of the differences of the row.
    [[nodiscard]] DescribedDifference described(TalIec61850Scl::Difference const& each) const;
};

/// How the comparison of captures with the description of their station is written. Names and order
/// of the fields are stable; what a row lacks is null.
///
///     result        text     match, missing, differs or unexpected
///     ied           text
///     controlBlock  text     its reference on the wire, as described
///     protocol      text     GOOSE or SV
///     gocbRef       text     of the stream, else as described; GOOSE
///     svID          text     of the stream, else as described; SV
///     differences   array    objects of what, expected, found, of memberType also member and name,
///                            then file and position of the packet that shows it; in csv a text
///     packets       integer  of the stream, copies and duplicates once
///     file          text     that has the packet which shows it
///     position      integer  of its PDU, in octets
///
/// A table has a line for each difference.
[[nodiscard]] RowLayout<StationCheckRow> stationCheckLayout(Format format);

}  // namespace TalIec61850Tools
