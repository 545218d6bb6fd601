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
    std::optional<std::string> svID;
    std::optional<std::string> datSet;
    std::optional<Readable<std::uint64_t>> smpCnt;
    std::optional<Readable<std::uint64_t>> confRev;
    std::optional<Readable<UtcTime>> refrTm;
    std::optional<Readable<std::uint64_t>> smpSynch;
    std::optional<Readable<std::uint64_t>> smpRate;
    std::optional<SequenceOfData> seqData;
    std::optional<Readable<std::uint64_t>> smpMod;
    std::optional<OctetString> gmIdentity;
    /// See AsduView::visitOthers.
    std::vector<RawElement> others;

    friend bool operator==(AsduContent const&, AsduContent const&) = default;
};

[[nodiscard]] TALIEC61850ANALYSIS_EXPORT AsduContent toOwned(AsduView const& view);

}  // namespace TalIec61850Analysis
