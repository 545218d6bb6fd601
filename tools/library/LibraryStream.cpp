#include "tools/library/LibraryStream.hpp"

#include <tuple>

namespace TalIec61850Tools {

using TalIec61850Parser::Goose;
using TalIec61850Parser::HsrInfo;
using TalIec61850Parser::Sv;
using TalIec61850Parser::VlanInfo;

namespace {

/// What GOOSE and SV streams have alike.
template <typename Stream>
LibraryStream commonIdentity(Protocol protocol, Stream const& stream) {
    LibraryStream identity;
    identity.protocol = protocol;
    identity.source = stream.srcMac;
    identity.destination = stream.dstMac;
    identity.vlan = stream.vlan;
    identity.hsr = stream.hsr;
    identity.prp = stream.prp;
    identity.appId = stream.appId;
    identity.reserved1Bit0 = stream.reserved1Bit0;
    identity.confRev = stream.confRev;
    return identity;
}

auto namesOf(LibraryStream const& identity) {
    return std::tie(identity.protocol, identity.destination, identity.appId, identity.svID,
                    identity.gocbRef, identity.datSet, identity.goID, identity.source);
}

auto restOf(LibraryStream const& identity) {
    VlanInfo const vlan = identity.vlan.value_or(VlanInfo{});
    HsrInfo const hsr = identity.hsr.value_or(HsrInfo{});
    return std::tuple(vlan.vlanId, vlan.priority, vlan.dei, hsr.lanId, hsr.hsrSpare1, hsr.hsrSpare2,
                      hsr.hsrSpare3, identity.reserved1Bit0, identity.confRev,
                      identity.simulationPresent);
}

}  // namespace

LibraryStream identityOf(Goose const& goose) {
    LibraryStream identity = commonIdentity(Protocol::goose, goose);
    identity.gocbRef = goose.gocbRef;
    identity.datSet = goose.datSet;
    identity.goID = goose.goID;
    identity.simulationPresent = goose.simulation.value_or(false);
    return identity;
}

LibraryStream identityOf(Sv const& sv) {
    LibraryStream identity = commonIdentity(Protocol::sv, sv);
    identity.svID = sv.svID;
    return identity;
}

bool comesBefore(LibraryStream const& a, LibraryStream const& b) {
    return namesOf(a) != namesOf(b) ? namesOf(a) < namesOf(b) : restOf(a) < restOf(b);
}

}  // namespace TalIec61850Tools
