#pragma once

#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <string>

namespace TalTest {

/// A GOOSE stream without packets whose identity is set but for VLAN, lanes and simulation.
inline TalIec61850Parser::Goose gooseNamed(std::string const& gocbRef) {
    TalIec61850Parser::Goose goose;
    goose.srcMac = "00:30:a7:00:00:01";
    goose.dstMac = "01:0c:cd:01:00:01";
    goose.appId = 1;
    goose.reserved1Bit0 = 0;
    goose.gocbRef = gocbRef;
    goose.datSet = "dataSet1";
    goose.goID = "goID1";
    goose.confRev = 1;
    return goose;
}

/// An SV stream without packets whose identity is set but for VLAN and lanes.
inline TalIec61850Parser::Sv svNamed(std::string const& svID) {
    TalIec61850Parser::Sv sv;
    sv.srcMac = "00:30:a7:00:00:02";
    sv.dstMac = "01:0c:cd:04:00:01";
    sv.reserved1Bit0 = 0;
    sv.svID = svID;
    sv.confRev = 1;
    return sv;
}

}  // namespace TalTest
