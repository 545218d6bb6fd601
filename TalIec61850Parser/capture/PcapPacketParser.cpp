#include <TalIec61850Parser/capture/PcapPacketParser.hpp>
#include <TalIec61850Parser/capture/index/IndexFrame.hpp>

namespace TalIec61850Parser {

void PcapPacketParser::parsePacket(std::vector<std::uint8_t> const& record, PcapFile& file,
                                   bool isNanosecond, bool isLittleEndian, Filter const& filter,
                                   Db& db) {
    detail::indexRecord(
        record, file.recordPosition,
        {.fileName = file.fileName,
         .variant = {.isNanosecond = isNanosecond, .isLittleEndian = isLittleEndian},
         .filter = filter,
         .db = db});
}

}  // namespace TalIec61850Parser
