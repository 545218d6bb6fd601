#pragma once

#include <TalIec61850Scl/model/StationDescription.hpp>
#include <cstddef>
#include <string>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// A value in the messages of a control block. What it points to must outlive it.
struct DescribedMemberRow {
    TalIec61850Scl::ControlBlock const* block = nullptr;
    TalIec61850Scl::DataSet const* dataSet = nullptr;
    /// Its number among the members.
    std::size_t number = 0;

    [[nodiscard]] TalIec61850Scl::DataSetMember const& member() const {
        return dataSet->members[number];
    }
};

/// Where a member of a data set is in a message: of GOOSE by its path, as events have it: "3", or
/// "9.2" for the second value inside the ninth; of SV its number among all values, from 1.
[[nodiscard]] std::string describedMemberText(TalIec61850Scl::ControlBlock const& block,
                                              TalIec61850Scl::DataSet const& dataSet,
                                              std::size_t number);

/// How the members of data sets are written. Names and order of the fields are stable; what the
/// description does not say is null.
///
///     ied           text
///     controlBlock  text    its reference on the wire
///     member        text    where it is in a message
///     name          text    LD0/PTRC1.Op.general
///     bType         text    as the description writes it
///     fc            text
///     desc          text
///     unit          text    of the value that is scaled
///     scale         number  value x scale + offset is in the unit
///     offset        number
[[nodiscard]] RowLayout<DescribedMemberRow> describedMemberLayout();

}  // namespace TalIec61850Tools
