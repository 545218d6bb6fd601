// Every packet of an index, decoded again from its file: what the decoders of the tests make of it.

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <cstddef>
#include <cstdint>

#include "fuzz/CaptureInput.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/DecodedPacket.hpp"
#include "fuzz/Tally.hpp"
#include "index/Indexing.hpp"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace TalTest;
    static TalFuzz::Tally decoded("packets are decoded to something");
    static ScratchFile file;
    TalFuzz::muteErrors();
    Bytes const capture = TalFuzz::withoutLongClaim(TalFuzz::captureInput({data, size}).capture);
    file.assign(capture);
    TalIec61850Parser::Db db;
    indexInto(db, file.path());
    for (auto const& [position, packet] : packetsByPosition(db)) {
        bool const isSomething =
            packet.goose != nullptr ? TalFuzz::isGooseDecodedRightly(file.path(), capture, position)
                                    : TalFuzz::isSvDecodedRightly(file.path(), capture, position);
        decoded.add(isSomething ? 1 : 0, 1);
    }
    db.gooseProto.addGoose();
    TalIec61850Parser::Db::_clearProtoByFileName(file.path(), db.gooseProto);
    db.svProto.addSv();
    db.clearByFileName(file.path());
    TalFuzz::require(db.gooseProto.getGooseCount() + db.svProto.getSvCount() == 0,
                     "nothing is left of a file that was cleared");
    return 0;
}
