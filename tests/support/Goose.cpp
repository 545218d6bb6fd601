#include "support/Goose.hpp"

namespace TalTest {

GooseMessage& GooseMessage::setData(std::vector<Bytes> const& entries) {
    Bytes content;
    for (Bytes const& entry : entries) {
        append(content, entry);
    }
    numDatSetEntries = entries.size();
    allData = content;
    return *this;
}

Bytes goosePdu(GooseMessage const& message) {
    Bytes const allData = message.allData
                              ? ber(message.allDataTag, *message.allData, message.allDataLengthForm)
                              : Bytes{};
    Bytes const fields = concat({
        message.extraFirst,
        berOptional(0x80, message.gocbRef),
        berUnsigned(0x81, message.timeAllowedtoLive),
        berOptional(0x82, message.datSet),
        berOptional(0x83, message.goID),
        berOptional(0x84, message.t),
        berUnsigned(0x85, message.stNum),
        berUnsigned(0x86, message.sqNum),
        berBoolean(0x87, message.simulation),
        berUnsigned(0x88, message.confRev),
        berBoolean(0x89, message.ndsCom),
        berUnsigned(0x8A, message.numDatSetEntries),
        message.extraBeforeData,
        allData,
        message.extraLast,
    });
    return ber(0x61, fields, message.pduLengthForm);
}

Bytes gooseApdu(GooseMessage const& message) {
    return apdu({.appId = message.appId,
                 .reserved1 = message.reserved1,
                 .reserved2 = message.reserved2,
                 .length = message.length},
                goosePdu(message), message.trailing);
}

Bytes gooseFrame(Ethernet const& ethernet, GooseMessage const& message) {
    return ethernetFrame(ethernet, etherTypeGoose, gooseApdu(message));
}

}  // namespace TalTest
