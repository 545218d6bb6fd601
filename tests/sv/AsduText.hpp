#pragma once

#include <TalIec61850Parser/sv/ASDUData.hpp>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace TalTest {

/// A decoded ASDU as something that can be compared and printed: every field in turn.
inline std::string textOf(TalIec61850Parser::ASDUData const& asdu) {
    std::ostringstream out;
    out << "svID '" << asdu.svID << "' datSet '" << asdu.datSet << "' smpCnt " << asdu.smpCnt
        << " confRev " << asdu.confRev << " refrTm";
    for (std::uint8_t const octet : asdu.refrTm) out << ' ' << unsigned{octet};
    out << " smpSynch " << unsigned{asdu.smpSynch} << " smpRate " << asdu.smpRate << " samples";
    for (TalIec61850Parser::SampleData const& sample : asdu.samples)
        out << ' ' << sample.value << '/' << sample.quality;
    return out.str();
}

/// One line for each ASDU.
inline std::string textOf(std::vector<TalIec61850Parser::ASDUData> const& asdus) {
    std::string lines;
    for (TalIec61850Parser::ASDUData const& asdu : asdus) lines += textOf(asdu) + '\n';
    return lines;
}

}  // namespace TalTest
