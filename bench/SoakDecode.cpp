#include "bench/SoakDecode.hpp"

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <vector>

#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "support/SampledValues.hpp"
#include "support/StationDevice.hpp"

namespace TalBench {

using TalIec61850Parser::ASDUData;
using TalIec61850Parser::GooseParser;
using TalIec61850Parser::GoosePdu;
using TalIec61850Parser::Package;
using TalTest::Bytes;

namespace {

void require(bool isRight, std::string const& path, Package const& package) {
    if (!isRight) {
        throw std::runtime_error(path + ": the packet at " + std::to_string(package.position) +
                                 " was decoded to something else than was written");
    }
}

std::optional<std::string> unlessEmpty(std::string const& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

/// What a publisher writes for this ASDU.
Bytes encoded(ASDUData const& decoded) {
    std::vector<TalTest::Sample> channels;
    for (auto const& sample : decoded.samples) {
        channels.emplace_back(sample.value, sample.quality);
    }
    TalTest::Asdu asdu;
    asdu.svID = decoded.svID;
    asdu.datSet = unlessEmpty(decoded.datSet);
    asdu.smpCnt = decoded.smpCnt;
    asdu.confRev = decoded.confRev;
    asdu.smpSynch = decoded.smpSynch;
    asdu.seqData = TalTest::samples(channels);
    return asduElement(asdu);
}

/// Of the elements that a decoded goosePdu tells, those that can be written again: stNum, too,
/// since GoosePublisher counts the second of the last change with it.
std::vector<Bytes> encoded(GoosePdu const& pdu) {
    auto const stNum = static_cast<std::uint32_t>(std::stoul(pdu.stNum));
    return {TalTest::ber(0x80, pdu.gocbRef),
            TalTest::ber(0x82, pdu.datSet),
            TalTest::ber(0x83, pdu.goID),
            TalTest::ber(0x84, TalTest::utcTime(TalTest::stationStart + stNum)),
            TalTest::ber(0x85, TalTest::minimalUnsigned(stNum)),
            TalTest::ber(0x88, TalTest::minimalUnsigned(std::stoul(pdu.confRev))),
            TalTest::ber(0x8A, TalTest::minimalUnsigned(std::stoul(pdu.numDatSetEntries))),
            TalTest::ber(0xAB, pdu.allData)};
}

/// The booleans of GoosePublisher's data, each in front of a quality.
std::vector<float> booleansIn(Bytes const& allData) {
    std::size_t const pairSize = TalTest::dataBoolean(true).size() + TalTest::dataQuality().size();
    std::vector<float> values;
    for (std::size_t pair = 0; pair + pairSize <= allData.size(); pair += pairSize) {
        values.push_back(allData[pair + 2] != 0 ? 1.0F : 0.0F);
    }
    return values;
}

}  // namespace

void checkDecodedGoose(std::string const& path, Package const& package, WrittenFrame const& frame) {
    GoosePdu const pdu = GooseParser::parseGoosePDUFromFile(path, package.position);
    require(!pdu.stNum.empty() && !pdu.t.empty() && !pdu.allData.empty(), path, package);
    for (Bytes const& element : encoded(pdu)) {
        require(TalTest::find(frame.octets, element).has_value(), path, package);
    }
    require(GooseParser::parseBooleanValues(pdu.allData) == booleansIn(pdu.allData), path, package);
}

void checkDecodedSv(std::string const& path, Package const& package, WrittenFrame const& frame) {
    Bytes sequence;
    for (ASDUData const& asdu :
         TalIec61850Parser::SvParser::parseASDUFromFile(path, package.position)) {
        TalTest::append(sequence, encoded(asdu));
    }
    sequence = TalTest::ber(0xA2, sequence);
    std::size_t const begin = package.position - frame.position;
    require(begin + sequence.size() <= frame.octets.size() &&
                std::equal(sequence.begin(), sequence.end(),
                           frame.octets.begin() + static_cast<std::ptrdiff_t>(begin)),
            path, package);
}

}  // namespace TalBench
