#pragma once

#include <TalIec61850Scl/model/StationDescription.hpp>
#include <cstddef>

#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// A control block of a description. What it points to must outlive it.
struct ControlBlockRow {
    TalIec61850Scl::ControlBlock const* block = nullptr;
    TalIec61850Scl::StationDescription const* station = nullptr;

    /// What its messages hold; null where that is not described.
    [[nodiscard]] TalIec61850Scl::DataSet const* dataSet() const {
        return block->dataSet ? &station->dataSets[*block->dataSet] : nullptr;
    }
};

/// How control blocks are written. Names and order of the fields are stable; what the description
/// does not say is null.
///
///     protocol      text       GOOSE or SV
///     ied           text
///     controlBlock  text       its reference on the wire: IED1LD0/LLN0$GO$gcb1, SV with $MS$
///     id            text       goID or svID
///     datSet        text       the reference of the data set
///     confRev       integer
///     mac           text       the multicast address
///     appId         text       hexadecimal, such as 0x4000
///     vlanId        integer
///     vlanPriority  integer
///     minTime       number     milliseconds; GOOSE
///     maxTime       number     milliseconds; GOOSE
///     smpRate       integer    SV
///     smpMod        text       its unit: SmpPerPeriod, SmpPerSec or SecPerSmp; SV
///     nofASDU       integer    SV
///     redundancy    text       of the access point: none, hsr, prp or rstp
///     members       integer    values in a message
///     subscribers   integer    IEDs that listen
///     desc          text
///     file          text       the description
///     line          integer
[[nodiscard]] RowLayout<ControlBlockRow> controlBlockLayout();

}  // namespace TalIec61850Tools
