#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <string>
#include <vector>

#include "support/Bytes.hpp"

namespace TalBench {

/// A frame that is judged, wanted by the filter it is judged with.
struct JudgedFrame {
    /// As a contender, and as the table's rows call it.
    std::string name;
    std::string text;
    TalTest::Bytes frame;
    TalIec61850Parser::Filter filter;
    /// What EthernetParser::parsePacketSimple says of it.
    bool verdict;
};

/// A GOOSE frame and an SV frame, each with an empty filter and with one of 20 entries, of which
/// the last names the frame.
[[nodiscard]] std::vector<JudgedFrame> judgedFrames();

}  // namespace TalBench
