#include "tools/inspect/AsduContent.hpp"

#include <utility>

#include "tools/inspect/AsduReader.hpp"
#include "tools/inspect/FieldReader.hpp"
#include "tools/inspect/Integer.hpp"

namespace TalIec61850Tools {

namespace {

/// Makes a number of a field that has a width of its own.
auto numberOf(std::size_t width) {
    return [width](OctetString&& octets) -> Reading<Readable<std::uint64_t>> {
        auto number = readUnsigned(octets);
        auto const fault =
            octets.size() == width ? std::nullopt : std::optional(FaultKind::wrongLength);
        return {std::move(number), fault};
    };
}

Reading<OctetString> readIdentity(OctetString&& octets) {
    constexpr std::size_t kIdentitySize = 8;
    auto const fault =
        octets.size() == kIdentitySize ? std::nullopt : std::optional(FaultKind::wrongLength);
    return {std::move(octets), fault};
}

Reading<SequenceOfData> readSequenceOfData(OctetString&& octets) {
    constexpr std::size_t kSampleSize = 8;
    if (octets.size() % kSampleSize != 0) {
        return {std::move(octets)};
    }
    auto const word = [&](std::size_t i) {
        return std::uint32_t{octets[i]} << 24U | std::uint32_t{octets[i + 1]} << 16U |
               std::uint32_t{octets[i + 2]} << 8U | std::uint32_t{octets[i + 3]};
    };
    std::vector<ChannelSample> samples;
    samples.reserve(octets.size() / kSampleSize);
    for (std::size_t i = 0; i < octets.size(); i += kSampleSize) {
        samples.push_back({.value = static_cast<std::int32_t>(word(i)), .quality = {word(i + 4)}});
    }
    return {std::move(samples)};
}

void takeField(Element&& element, AsduContent& asdu, FieldReader& fields) {
    switch (element.tag.value_or(0)) {
        case 0x80:
            return fields.take(asdu.svID, std::move(element), readText);
        case 0x81:
            return fields.take(asdu.datSet, std::move(element), readText);
        case 0x82:
            return fields.take(asdu.smpCnt, std::move(element), numberOf(2));
        case 0x83:
            return fields.take(asdu.confRev, std::move(element), numberOf(4));
        case 0x84:
            return fields.take(asdu.refrTm, std::move(element), readTime);
        case 0x85:
            return fields.take(asdu.smpSynch, std::move(element), numberOf(1));
        case 0x86:
            return fields.take(asdu.smpRate, std::move(element), numberOf(2));
        case 0x87:
            return fields.take(asdu.seqData, std::move(element), readSequenceOfData);
        case 0x88:
            return fields.take(asdu.smpMod, std::move(element), numberOf(2));
        case 0x89:
            return fields.take(asdu.gmIdentity, std::move(element), readIdentity);
        default:
            return fields.keep(std::move(element));
    }
}

}  // namespace

AsduContent readAsdu(Element&& element, Faults& faults) {
    AsduContent asdu;
    asdu.offset = element.offset;
    FieldReader fields(asdu.others, faults);
    fields.report(element.offset, element.fault);
    ElementReader reader(std::move(element.value));
    while (auto field = reader.next()) {
        takeField(std::move(*field), asdu, fields);
    }
    return asdu;
}

}  // namespace TalIec61850Tools
