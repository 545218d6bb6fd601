#pragma once

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <string>
#include <vector>

#include "tools/output/RowLayout.hpp"
#include "tools/render/FindingText.hpp"

namespace TalIec61850Tools {

/// A finding with what it is told by. All that it points to must outlive it.
struct FindingRow {
    TalIec61850Analysis::Finding const* finding = nullptr;
    TalIec61850Analysis::TrafficIndex const* index = nullptr;
    FindingText* words = nullptr;
    /// Names of the captures, by the numbers of the files.
    std::vector<std::string> const* files = nullptr;
    /// Null where nothing is described.
    StreamNames* names = nullptr;

    /// What tells its stream from others; null where it is of none.
    [[nodiscard]] TalIec61850Analysis::StreamKey const* key() const {
        return finding->stream ? &index->streams()[*finding->stream].key : nullptr;
    }
};

/// How findings are written. Names and order of the fields are stable; what a finding lacks is
/// null.
///
///     finding           text     the kind, such as sampleGap
///     severity          text     note, warning or error
///     protocol          text     GOOSE or SV
///     source            text     MAC address
///     destination       text     MAC address
///     vlanId            integer  of the innermost tag
///     appId             text     hexadecimal, such as 0x4000
///     svID              text     SV
///     gocbRef           text     GOOSE
///     time              text     when it began; of what is missing, when the next packet came
///     timeNs            integer  the same in nanoseconds since 1970
///     untilTime         text     when it was met last
///     untilTimeNs       integer
///     count             integer  how often it was met
///     lost              integer  samples, messages or states that are missing
///     expected          any      what should have come, or what was before
///     found             any      what came
///     cause             text     of a loss: capture, network, publisher or unknown
///     witness           text     what tells the cause, such as otherStreamsRanOn
///     witnessFrames     integer  how many frames say so
///     file              text     that has the packet which shows it
///     position          integer  of its PDU, in octets
///     previousFile      text     that has the packet before
///     previousPosition  integer
///     text              text     a sentence for people
///
/// Where streams are described, these come at the end:
///
///     ied               text     that publishes the stream
///     controlBlock      text     its reference as described
///     name              text     of the member or channel that the finding is about
/// @param areDescribed  whether they are
[[nodiscard]] RowLayout<FindingRow> findingLayout(bool areDescribed = false);

}  // namespace TalIec61850Tools
