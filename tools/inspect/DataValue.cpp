#include "tools/inspect/DataValue.hpp"

namespace TalIec61850Tools {

DataKind kindOf(std::uint8_t tag) {
    switch (tag) {
        case 0xA1:
            return DataKind::array;
        case 0xA2:
            return DataKind::structure;
        case 0x83:
            return DataKind::boolean;
        case 0x84:
            return DataKind::bitString;
        case 0x85:
            return DataKind::integer;
        case 0x86:
            return DataKind::unsignedNumber;
        case 0x87:
            return DataKind::floatingPoint;
        case 0x89:
            return DataKind::octetString;
        case 0x8A:
            return DataKind::visibleString;
        case 0x8C:
            return DataKind::binaryTime;
        case 0x8D:
            return DataKind::bcd;
        case 0x8E:
            return DataKind::booleanArray;
        case 0x8F:
            return DataKind::objectId;
        case 0x90:
            return DataKind::mmsString;
        case 0x91:
            return DataKind::utcTime;
        default:
            return DataKind::unknown;
    }
}

}  // namespace TalIec61850Tools
