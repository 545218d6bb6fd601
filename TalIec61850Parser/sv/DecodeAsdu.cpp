// The operations of SvParser that decode one packet in full.

#include <TalIec61850Parser/codec/BerValue.hpp>
#include <TalIec61850Parser/codec/ReadElementContent.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>
#include <TalIec61850Parser/wire/ShortLength.hpp>
#include <TalIec61850Parser/wire/SvTags.hpp>
#include <algorithm>
#include <bit>
#include <optional>

namespace TalIec61850Parser {

namespace {

using wire::Octets;
using enum wire::AsduField;
using wire::kSampleSize;
namespace ber = wire::ber;

constexpr std::size_t kMaxAsdus = 50;
constexpr std::size_t kMaxJudgedSamples = 8;

/// Sets a number whose value has exactly its own width; any other width leaves it as it was.
template <typename Integer>
void takeExact(Octets value, Integer& field) {
    if (value.size() == sizeof(Integer)) {
        field = wire::readBigEndian<Integer>(value);
    }
}

void takeSamples(Octets value, std::vector<SampleData>& samples) {
    samples.reserve(value.size() / kSampleSize);
    for (; value.size() >= kSampleSize; value = value.subspan(kSampleSize)) {
        samples.push_back(
            {.value = std::bit_cast<std::int32_t>(wire::readBigEndian<std::uint32_t>(value)),
             .quality = wire::readBigEndian<std::uint32_t>(value.subspan(4))});
    }
}

/// Puts one field where its tag number says; higher numbers are passed over.
void takeField(std::uint8_t number, Octets value, ASDUData& asdu) {
    switch (number) {
        case kSvID:
            asdu.svID.assign(value.begin(), value.end());
            break;
        case kAsduDatSet:
            asdu.datSet.assign(value.begin(), value.end());
            break;
        case kSmpCnt:
            takeExact(value, asdu.smpCnt);
            break;
        case kAsduConfRev:
            takeExact(value, asdu.confRev);
            break;
        case kRefrTm:
            asdu.refrTm.assign(value.begin(), value.end());
            break;
        case kSmpSynch:
            takeExact(value, asdu.smpSynch);
            break;
        case kSmpRate:
            takeExact(value, asdu.smpRate);
            break;
        case kSeqData:
            takeSamples(value, asdu.samples);
            break;
        default:
            break;
    }
}

/// The value of the element at `position`, which moves past it; nullopt when its length is not
/// readable or reaches past the end.
std::optional<Octets> readValue(Octets data, std::size_t& position) {
    auto const length = wire::readShortLength(data, position + 1);
    if (!length) {
        return std::nullopt;
    }
    std::size_t const start = position + 1 + length->size;
    if (data.size() - start < length->length) {
        return std::nullopt;
    }
    position = start + length->length;
    return data.subspan(start, length->length);
}

/// Deliberate: what is no primitive context-specific tag is stepped into octet by octet.
ASDUData decodeAsdu(Octets content) {
    ASDUData asdu;
    std::size_t position = 0;
    while (position + 1 < content.size()) {
        std::uint8_t const tag = content[position];
        if (!ber::isContextPrimitive(tag)) {
            ++position;
            continue;
        }
        auto const value = readValue(content, position);
        if (!value) {
            break;
        }
        takeField(ber::tagNumber(tag), *value, asdu);
    }
    return asdu;
}

/// Deliberate: octets between ASDUs are stepped over one at a time.
std::vector<ASDUData> decodeSequence(Octets content) {
    std::vector<ASDUData> asdus;
    std::size_t position = 0;
    while (position + 1 < content.size() && asdus.size() < kMaxAsdus) {
        if (content[position] != wire::kAsdu) {
            ++position;
            continue;
        }
        auto const asdu = readValue(content, position);
        if (!asdu) {
            break;
        }
        asdus.push_back(decodeAsdu(*asdu));
    }
    return asdus;
}

}  // namespace

std::vector<ASDUData> SvParser::parseASDUFromFile(std::string const& fileName,
                                                  std::size_t position) {
    auto const content = detail::readElementContent(fileName, position, wire::kSequenceOfAsdu);
    return content ? decodeSequence(*content) : std::vector<ASDUData>{};
}

void SvParser::_parseSampleDataWithQuality(std::vector<std::uint8_t> const& data,
                                           std::string const& label) {
    constexpr std::uint8_t validityMask = 3;
    std::size_t const samples = std::min(kMaxJudgedSamples, data.size() / kSampleSize);
    for (std::size_t k = 0; k < samples; ++k) {
        _parseQualityValidity(data[kSampleSize * k + kSampleSize - 1] & validityMask, label);
    }
}

void SvParser::_parseQualityValidity(std::uint8_t /*validity*/, std::string const& /*label*/) {}

}  // namespace TalIec61850Parser
