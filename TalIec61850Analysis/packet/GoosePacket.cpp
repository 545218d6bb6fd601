#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/OwnedFields.hpp>

namespace TalIec61850Analysis {

GoosePacket toOwned(GooseView const& view) {
    return {.header = view.header,
            .gocbRef = ownedField(view.gocbRef),
            .timeAllowedtoLive = ownedField(view.timeAllowedtoLive),
            .datSet = ownedField(view.datSet),
            .goID = ownedField(view.goID),
            .t = ownedField(view.t),
            .stNum = ownedField(view.stNum),
            .sqNum = ownedField(view.sqNum),
            .simulation = ownedField(view.simulation),
            .confRev = ownedField(view.confRev),
            .ndsCom = ownedField(view.ndsCom),
            .numDatSetEntries = ownedField(view.numDatSetEntries),
            .allData = ownedField(view.allData),
            .others = ownedOthers(view),
            .leading = toOwned(view.leading),
            .trailing = toOwned(view.trailing),
            .faults = ownedFaults(view)};
}

GoosePacket decodeGoose(Octets frame, std::size_t pduOffset, FrameOrigin const& origin) {
    return toOwned(viewGoose(frame, pduOffset, origin));
}

GoosePacket decodeGoose(Octets frame, FrameOrigin const& origin) {
    return toOwned(viewGoose(frame, origin));
}

}  // namespace TalIec61850Analysis
