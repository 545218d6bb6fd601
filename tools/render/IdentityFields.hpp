#pragma once

#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <string_view>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/render/Cells.hpp"

namespace TalIec61850Tools {

/// What tells the stream of a row from others: source, destination, vlanId (of the innermost tag),
/// appId, svID and gocbRef.
/// @param keyOf  null for a row of no stream
template <typename Row>
[[nodiscard]] std::vector<Field<Row>> identityFields(
    TalIec61850Analysis::StreamKey const* (*keyOf)(Row const& row)) {
    using Key = TalIec61850Analysis::StreamKey;
    auto const field = [keyOf](std::string_view name, Cell (*cellOf)(Key const& key)) {
        return Field<Row>{.name = name, .cell = [keyOf, cellOf](Row const& row) {
                              Key const* const key = keyOf(row);
                              return key != nullptr ? cellOf(*key) : Cell();
                          }};
    };
    return {field("source", [](Key const& key) { return addressCell(key.source); }),
            field("destination", [](Key const& key) { return addressCell(key.destination); }),
            field("vlanId",
                  [](Key const& key) {
                      return key.vlans.empty() ? Cell() : Cell(key.vlans.back().id);
                  }),
            field("appId", [](Key const& key) { return appIdCell(key.appId); }),
            field("svID",
                  [](Key const& key) {
                      return key.protocol == Protocol::sv ? Cell(key.name) : Cell();
                  }),
            field("gocbRef", [](Key const& key) {
                return key.protocol == Protocol::goose ? Cell(key.name) : Cell();
            })};
}

}  // namespace TalIec61850Tools
