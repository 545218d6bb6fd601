#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/AsduView.hpp>
#include <TalIec61850Analysis/packet/ChannelSample.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/packet/RawElement.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Analysis {

/// One ASDU in full, with octets of its own; see AsduView, of which it is made.
struct AsduContent {
    /// Index in the frame of its identifier octet (30).
    std::size_t offset = 0;
    /// The stream.
    std::optional<std::string> svID;
    /// The data set.
    std::optional<std::string> datSet;
    /// The number of the sample.
    std::optional<Readable<std::uint64_t>> smpCnt;
    /// The revision of the data set.
    std::optional<Readable<std::uint64_t>> confRev;
    /// When the sample was taken.
    std::optional<Readable<UtcTime>> refrTm;
    /// What the clock is synchronized to.
    std::optional<Readable<std::uint64_t>> smpSynch;
    /// The rate of the samples, in the unit that smpMod says.
    std::optional<Readable<std::uint64_t>> smpRate;
    /// The sample.
    std::optional<SequenceOfData> seqData;
    /// The unit of smpRate.
    std::optional<Readable<std::uint64_t>> smpMod;
    /// The clock.
    std::optional<OctetString> gmIdentity;
    /// See AsduView::visitOthers.
    std::vector<RawElement> others;

    /// Member by member.
    friend bool operator==(AsduContent const&, AsduContent const&) = default;
};

/// A copy with octets of its own.
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT AsduContent toOwned(AsduView const& view);

}  // namespace TalIec61850Analysis
