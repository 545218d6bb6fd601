#include <TalIec61850Analysis/packet/OwnedFields.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>

namespace TalIec61850Analysis {

SvPacket toOwned(SvView const& view) {
    SvPacket packet{.header = view.header,
                    .noASDU = ownedField(view.noASDU),
                    .security = ownedField(view.security),
                    .asdus = {},
                    .others = ownedOthers(view),
                    .leading = toOwned(view.leading),
                    .trailing = toOwned(view.trailing),
                    .faults = ownedFaults(view)};
    for (AsduView const& asdu : view.asdus) {
        packet.asdus.push_back(toOwned(asdu));
    }
    return packet;
}

SvPacket decodeSv(Octets frame, std::size_t asdusOffset, FrameOrigin const& origin) {
    return toOwned(viewSv(frame, asdusOffset, origin));
}

SvPacket decodeSv(Octets frame, FrameOrigin const& origin) {
    return toOwned(viewSv(frame, origin));
}

}  // namespace TalIec61850Analysis
