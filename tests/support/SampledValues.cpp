#include "support/SampledValues.hpp"

namespace TalTest {
namespace {

Bytes beforeSequence(SvMessage const& message) {
    std::optional<MinimalUnsigned> const noASDU =
        message.noASDU ? message.noASDU : MinimalUnsigned(message.asdus.size());
    return concat({
        message.extraFirst,
        message.omitNoASDU ? Bytes{} : berUnsigned(0x80, noASDU),
        berOptional(0x81, message.security),
        message.extraBeforeSequence,
    });
}

Bytes sequence(SvMessage const& message) {
    Bytes content = message.extraInSequence;
    for (Asdu const& asdu : message.asdus) {
        append(content, asduElement(asdu));
    }
    return ber(0xA2, content, message.sequenceLengthForm);
}

}  // namespace

Bytes samples(std::vector<Sample> const& channels) {
    Bytes out;
    for (auto const& [value, quality] : channels) {
        append(out, bigEndian(static_cast<std::uint32_t>(value), 4));
        append(out, bigEndian(quality, 4));
    }
    return out;
}

Bytes asduElement(Asdu const& asdu) {
    Bytes const fields = concat({
        asdu.extraFirst,
        berOptional(0x80, asdu.svID),
        berOptional(0x81, asdu.datSet),
        berUnsigned(0x82, asdu.smpCnt),
        berUnsigned(0x83, asdu.confRev),
        berOptional(0x84, asdu.refrTm),
        berUnsigned(0x85, asdu.smpSynch),
        berUnsigned(0x86, asdu.smpRate),
        berOptional(0x87, asdu.seqData),
        berUnsigned(0x88, asdu.smpMod),
        asdu.extraLast,
    });
    return ber(0x30, fields, asdu.lengthForm);
}

Bytes savPdu(SvMessage const& message) {
    return ber(0x60, concat({beforeSequence(message), sequence(message)}), message.pduLengthForm);
}

std::size_t sequenceOffset(SvMessage const& message) {
    return savPdu(message).size() - sequence(message).size();
}

Bytes svApdu(SvMessage const& message) {
    return apdu({.appId = message.appId,
                 .reserved1 = message.reserved1,
                 .reserved2 = message.reserved2,
                 .length = message.length},
                savPdu(message), message.trailing);
}

Bytes svFrame(Ethernet const& ethernet, SvMessage const& message) {
    return ethernetFrame(ethernet, etherTypeSampledValues, svApdu(message));
}

Ethernet svEthernet() { return Ethernet().to("01:0c:cd:04:00:01"); }

SvMessage message92le(std::string const& svID, std::uint16_t smpCnt, std::vector<Sample> channels) {
    constexpr std::size_t currentsAndVoltages = 8;
    channels.resize(currentsAndVoltages);
    Asdu asdu;
    asdu.svID = svID;
    asdu.smpCnt = smpCnt;
    asdu.seqData = samples(channels);
    SvMessage message;
    message.asdus = {asdu};
    return message;
}

}  // namespace TalTest
