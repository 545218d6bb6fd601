#include <TalIec61850Scl/match/AsduWatch.hpp>
#include <TalIec61850Scl/match/BindMembers.hpp>
#include <cstdint>

namespace TalIec61850Scl::detail {

using TalIec61850Analysis::AsduView;
using TalIec61850Analysis::PacketRef;

AsduWatch::AsduWatch(std::optional<SmvOptions> const& options, DataSet const* dataSet)
    : options_(options),
      size_(dataSet != nullptr ? sampleSize(*dataSet) : std::nullopt),
      least_(dataSet != nullptr ? leastSampleSize(*dataSet) : 0) {}

void AsduWatch::look(AsduView const& asdu, bool isCut, PacketRef packet,
                     DifferenceSet& differences) const {
    if (options_) {
        compareOptions(asdu, isCut, packet, differences);
    }
    // A field that is cut is not set.
    std::size_t const size = asdu.seqData ? asdu.seqData->octets().size() : 0;
    if (!isRightSize(size) && (asdu.seqData || !isCut)) {
        differences.add({.kind = DifferenceKind::memberCount,
                         .expected = static_cast<std::int64_t>(size_.value_or(least_)),
                         .found = static_cast<std::int64_t>(size),
                         .member = {},
                         .packet = packet});
    }
}

void AsduWatch::compareOptions(AsduView const& asdu, bool isCut, PacketRef packet,
                               DifferenceSet& differences) const {
    SmvOptions found = *options_;
    auto const setTo = [&](bool& option, bool isThere) { option = isThere || (isCut && option); };
    setTo(found.refreshTime, asdu.refrTm.has_value());
    setTo(found.sampleRate, asdu.smpRate.has_value());
    setTo(found.dataSet, asdu.datSet.has_value());
    setTo(found.synchSourceId, asdu.gmIdentity.has_value());
    if (found.sampleSynchronized) {
        setTo(found.sampleSynchronized, asdu.smpSynch.has_value());
    }
    if (found != *options_) {
        differences.add({.kind = DifferenceKind::options,
                         .expected = *options_,
                         .found = found,
                         .member = {},
                         .packet = packet});
    }
}

}  // namespace TalIec61850Scl::detail
