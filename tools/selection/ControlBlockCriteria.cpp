#include "tools/selection/ControlBlockCriteria.hpp"

#include <cstdint>
#include <optional>

namespace TalIec61850Tools {

using TalIec61850Scl::ControlBlock;

bool ControlBlockCriteria::admitIed(std::string const& ied) const {
    return meetsPattern(ieds, ied);
}

bool ControlBlockCriteria::admitDescribed(ControlBlock const& block) const {
    bool const isGoose = block.protocol == Protocol::goose;
    std::optional<std::string> const none;
    std::optional<std::string> const id = block.id;
    std::optional<std::uint64_t> const confRev = block.confRev;
    return (!streams.protocol || streams.protocol == block.protocol) && streams.sources.empty() &&
           meets(streams.destinations, block.address.mac) &&
           meets(streams.vlanIds, block.address.vlanId) &&
           meets(streams.appIds, block.address.appId) && meets(streams.confRevs, confRev) &&
           meetsPattern(streams.datSets, block.dataSetReference) &&
           meetsPattern(streams.svIDs, isGoose ? none : id) &&
           meetsPattern(streams.goIDs, isGoose ? id : none) &&
           meetsPattern(streams.gocbRefs, isGoose ? std::optional(block.reference) : none);
}

}  // namespace TalIec61850Tools
