#pragma once

#include <TalIec61850Parser/codec/WalkTrace.hpp>
#include <cstdint>
#include <string>

#include "codec/TraceText.hpp"
#include "support/Ber.hpp"
#include "support/Bytes.hpp"

namespace TalTest {

/// What a walk did with an element of this tag: it went on after it, skipped it, or descended.
/// Told from the octets that it looked at: an element is in the element's value, and one after
/// it.
/// @param walk  walks the octets that it is given, and tells the trace
template <typename Walk>
std::string stepTaken(std::uint8_t tag, Walk const& walk) {
    Bytes const meaningless = ber(0x04, "ab");
    // What is after it all is looked at, so that nothing here is a tail.
    Bytes const data = concat({ber(tag, meaningless), meaningless, ber(0x30, {})});
    TalIec61850Parser::detail::WalkTrace trace;
    trace.begin(data);
    walk(data, trace);
    std::string const mask = lookedAt(trace);
    if (mask == "XXXXXXXX..XX") return "next";
    if (mask == "XX....XX..XX") return "skip";
    return mask == "XXXX..XX..XX" ? "descend" : mask;
}

}  // namespace TalTest
