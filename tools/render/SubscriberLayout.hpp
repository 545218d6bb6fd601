#pragma once

#include <TalIec61850Scl/model/StationDescription.hpp>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// One that listens to a control block. What it points to must outlive it.
struct SubscriberRow {
    TalIec61850Scl::ControlBlock const* block = nullptr;
    TalIec61850Scl::Subscriber const* subscriber = nullptr;
    TalIec61850Scl::StationDescription const* station = nullptr;

    /// What the messages hold that it listens to; null where that is not described.
    [[nodiscard]] TalIec61850Scl::DataSet const* dataSet() const {
        return block->dataSet ? &station->dataSets[*block->dataSet] : nullptr;
    }
    /// The value that it takes; null where it takes all of them.
    [[nodiscard]] TalIec61850Scl::DataSetMember const* member() const;
};

/// How subscriptions are written. Names and order of the fields are stable; what the description
/// does not say is null.
///
///     publisher     text     IED
///     controlBlock  text     its reference on the wire
///     subscriber    text     IED
///     node          text     the logical node that listens: LD0/PTRC1
///     intAddr       text     where the value goes to
///     member        text     where the value is in a message
///     name          text     LD0/PTRC1.Op.general
///     source        text     what says so: controlBlock, data or iedName
///     file          text     the description
///     line          integer
[[nodiscard]] RowLayout<SubscriberRow> subscriberLayout();

}  // namespace TalIec61850Tools
