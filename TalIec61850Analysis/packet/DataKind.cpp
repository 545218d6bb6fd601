#include <TalIec61850Analysis/packet/DataKind.hpp>
#include <TalIec61850Parser/wire/GooseTags.hpp>

namespace TalIec61850Analysis {

namespace wire = TalIec61850Parser::wire;

DataKind kindOf(std::uint8_t tag) noexcept {
    using wire::ber::constructed;
    using wire::ber::primitive;
    switch (tag) {
        case constructed(wire::kDataArray):
            return DataKind::array;
        case constructed(wire::kDataStructure):
            return DataKind::structure;
        case primitive(wire::kDataBoolean):
            return DataKind::boolean;
        case primitive(wire::kDataBitString):
            return DataKind::bitString;
        case primitive(wire::kDataInteger):
            return DataKind::integer;
        case primitive(wire::kDataUnsigned):
            return DataKind::unsignedNumber;
        case primitive(wire::kDataFloatingPoint):
            return DataKind::floatingPoint;
        case primitive(wire::kDataOctetString):
            return DataKind::octetString;
        case primitive(wire::kDataVisibleString):
            return DataKind::visibleString;
        case primitive(wire::kDataBinaryTime):
            return DataKind::binaryTime;
        case primitive(wire::kDataBcd):
            return DataKind::bcd;
        case primitive(wire::kDataBooleanArray):
            return DataKind::booleanArray;
        case primitive(wire::kDataObjectId):
            return DataKind::objectId;
        case primitive(wire::kDataMmsString):
            return DataKind::mmsString;
        case primitive(wire::kDataUtcTime):
            return DataKind::utcTime;
        default:
            return DataKind::unknown;
    }
}

}  // namespace TalIec61850Analysis
