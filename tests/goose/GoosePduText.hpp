#pragma once

#include <TalIec61850Parser/goose/GoosePdu.hpp>
#include <sstream>
#include <string>
#include <string_view>

#include "support/Bytes.hpp"

namespace TalTest {

/// A decoded goosePdu as something that can be compared and printed: one line for each field that
/// is not empty, so that an empty PDU is an empty text.
inline std::string textOf(TalIec61850Parser::GoosePdu const& pdu) {
    std::ostringstream out;
    auto const line = [&out](std::string_view name, std::string const& value) {
        if (!value.empty()) out << name << " = " << value << '\n';
    };
    line("gocbRef", pdu.gocbRef);
    line("timeAllowedToLive", pdu.timeAllowedToLive);
    line("datSet", pdu.datSet);
    line("goID", pdu.goID);
    line("t", pdu.t);
    line("stNum", pdu.stNum);
    line("sqNum", pdu.sqNum);
    line("simulation", pdu.simulation);
    line("confRev", pdu.confRev);
    line("ndsCom", pdu.ndsCom);
    line("numDatSetEntries", pdu.numDatSetEntries);
    if (!pdu.allData.empty()) out << "allData =" << std::hex;
    for (std::uint8_t const octet : pdu.allData) out << ' ' << unsigned{octet};
    return out.str();
}

}  // namespace TalTest
