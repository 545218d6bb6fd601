#pragma once

#include <string>

namespace TalTest {

/// The address of a control block in a description of a station: the access point of its IED, of
/// which it is the only one there.
struct SclAccess {
    std::string ied;
    std::string accessPoint = "AP1";
    /// More attributes of the access point.
    std::string attributes = "";
    /// GSE or SMV.
    std::string kind = "GSE";
    std::string controlBlock;
    std::string mac;
    std::string appId;
    /// VLAN 5 of priority 4, or none.
    bool hasVlan = true;
    /// MinTime of 4 ms and MaxTime of 100 ms, or none.
    bool hasTimes = true;
};

/// Its element ConnectedAP, the control block in LD0, each element a line.
[[nodiscard]] std::string textOf(SclAccess const& access);

/// The address of gcb1 of RELAY1: that of TalTest::GooseMessage, with a VLAN.
[[nodiscard]] SclAccess accessOfRelay1();
/// The address of msvcb1 of MU1: that of TalTest::SvMessage, with a VLAN.
[[nodiscard]] SclAccess accessOfMu1();

}  // namespace TalTest
