// Judges single frames in memory: is this a GOOSE or SV frame of a stream I want?

#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <cstdint>
#include <iostream>
#include <vector>

namespace {

using namespace TalIec61850Parser;

/// A GOOSE frame of a minimal PDU: gocbRef "A", goID "B".
std::vector<std::uint8_t> gooseFrame(std::uint8_t appId) {
    return {
        0x01, 0x0C,  0xCD, 0x01, 0x00, 0x01,              // destination
        0x02, 0x00,  0x00, 0x00, 0x00, 0x01,              // source
        0x88, 0xB8,                                       // EtherType
        0x00, appId, 0x00, 0x10, 0x00, 0x00, 0x00, 0x00,  // APPID, Length, Reserved 1 and 2
        0x61, 0x06,                                       // goosePdu
        0x80, 0x01,  'A',                                 // gocbRef
        0x83, 0x01,  'B',                                 // goID
    };
}

/// The same for SV: savPdu, noASDU 1, one ASDU of svID "C".
std::vector<std::uint8_t> svFrame() {
    return {
        0x01, 0x0C, 0xCD, 0x04, 0x00, 0x01,              //
        0x02, 0x00, 0x00, 0x00, 0x00, 0x01,              //
        0x88, 0xBA,                                      //
        0x40, 0x00, 0x00, 0x14, 0x00, 0x00, 0x00, 0x00,  //
        0x60, 0x0A,                                      // savPdu
        0x80, 0x01, 0x01,                                // noASDU
        0xA2, 0x05, 0x30, 0x03, 0x80, 0x01, 'C',         // sequence of ASDU, ASDU, svID
    };
}

}  // namespace

int main() {
    Filter filter;
    filter.gooseFilters.emplace_back().appId = 3;

    std::cout << std::boolalpha;
    std::cout << "GOOSE, APPID 3: " << EthernetParser::parsePacketSimple(gooseFrame(3), filter)
              << "\n";
    std::cout << "GOOSE, APPID 4: " << EthernetParser::parsePacketSimple(gooseFrame(4), filter)
              << "\n";

    // For SV a wanted frame gives false, as does one that is rejected by its addresses.
    std::cout << "SV, any:        " << EthernetParser::parsePacketSimple(svFrame(), filter) << "\n";
    filter.svFilters.emplace_back().appId = 0x4001;
    std::cout << "SV, not wanted: " << EthernetParser::parsePacketSimple(svFrame(), filter) << "\n";

    // Who wants more than a verdict asks the walker itself.
    Goose goose;
    if (GooseParserSimple::parsePacket(gooseFrame(3), 14, goose, filter)) {
        std::cout << "gocbRef " << goose.gocbRef.value_or("-") << ", goID "
                  << goose.goID.value_or("-") << "\n";
    }
}
