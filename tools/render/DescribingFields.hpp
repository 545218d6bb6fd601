#pragma once

#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <string_view>
#include <vector>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// The fields of what publishes the stream of a row: ied and controlBlock.
/// @param controlBlockOf  finds it in a row; null where it is not described
/// @param sharedBy        see Field
template <typename Row, typename ControlBlockOf>
[[nodiscard]] std::vector<Field<Row>> describingFields(
    ControlBlockOf controlBlockOf, void const* (*sharedBy)(Row const& row) = nullptr) {
    return {{"ied",
             [controlBlockOf](Row const& row) {
                 auto const* const found = controlBlockOf(row);
                 return found == nullptr ? Cell() : Cell(std::string_view(found->ied));
             },
             sharedBy},
            {"controlBlock",
             [controlBlockOf](Row const& row) {
                 auto const* const found = controlBlockOf(row);
                 return found == nullptr ? Cell() : Cell(std::string_view(found->reference));
             },
             sharedBy}};
}

}  // namespace TalIec61850Tools
