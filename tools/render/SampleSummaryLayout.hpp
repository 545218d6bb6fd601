#pragma once

#include <TalIec61850Analysis/samples/FindLayouts.hpp>
#include <TalIec61850Analysis/samples/SummarizeSamples.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <cstddef>

#include "tools/output/RowLayout.hpp"
#include "tools/output/RowLines.hpp"

namespace TalIec61850Tools {

/// The samples of a stream in figures.
struct SampleSummaryRow {
    /// Must outlive the row, and so must the layout.
    TalIec61850Analysis::StreamKey const* key = nullptr;
    /// The first layout of its samples; null where no ASDU could be looked at.
    TalIec61850Analysis::StreamLayout const* layout = nullptr;
    /// How many layouts its samples have.
    std::size_t layouts = 0;
    /// Whether the layout is that of a description.
    bool isDescribed = false;
    TalIec61850Analysis::SampleSummary summary = {};
};

/// How the samples of streams are written in figures. Names and order of the fields are stable;
/// what a stream lacks is null. In csv a list is a text with blanks.
///
///     source            text        MAC address
///     destination       text        MAC address
///     vlanId            integer     of the innermost tag
///     appId             text        hexadecimal
///     svID              text
///     dataSize          integer     octets of seqData
///     layout            text        8 x (INT32, quality); what seqData is taken for
///     channels          integer     null where there are octets alone
///     layoutSource      text        given, described, inferred, undecided; null for octets
///     layoutAsdus       integer     ASDUs that were looked at
///     layoutTests       list        which tests all of them met: int32Quality, float32Quality,
///                                   float32, valueTime, zero
///     layouts           integer     layouts that the stream has, of which this is the first
///     rate              number      samples a second
///     rateSource        text        given, counter, declared, standard, arrival
///     smpRate, smpMod   integer     as they are declared
///     countedRate       integer     by the largest smpCnt before it begins again
///     measuredRate      number      samples a second by smpCnt and arrival
///     rateContradicted  true/false  smpRate or smpCnt contradict the rate
///     timedByRefrTm, timedBySmpCnt, timedByFit, untimed
///                       integer     samples, by what tells their time
///     smpSynchs         list        the values that were met
///     residualMinNs     integer     arrival less time of the sample: the least
///     residualP50Ns, residualP90Ns, residualP99Ns, residualMaxNs
///                       integer     above the least
///     driftPpm          number      how much faster the clock of the capture runs
///     received          integer     samples that came, each once
///     lost              integer     samples that never came, between others
///     late, repeated    integer     samples after later ones; that came again
///     copies            integer     packets over the other LAN or lane
///     runs              integer     how often samples are counted anew, the first included
///
/// @param format  the one that is written
[[nodiscard]] RowLayout<SampleSummaryRow> sampleSummaryLayout(Format format);

}  // namespace TalIec61850Tools
