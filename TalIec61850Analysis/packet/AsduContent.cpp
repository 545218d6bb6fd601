#include <TalIec61850Analysis/packet/AsduContent.hpp>
#include <TalIec61850Analysis/packet/OwnedFields.hpp>

namespace TalIec61850Analysis {

AsduContent toOwned(AsduView const& view) {
    return {.offset = view.element.offset,
            .svID = ownedField(view.svID),
            .datSet = ownedField(view.datSet),
            .smpCnt = ownedField(view.smpCnt),
            .confRev = ownedField(view.confRev),
            .refrTm = ownedField(view.refrTm),
            .smpSynch = ownedField(view.smpSynch),
            .smpRate = ownedField(view.smpRate),
            .seqData = ownedField(view.seqData),
            .smpMod = ownedField(view.smpMod),
            .gmIdentity = ownedField(view.gmIdentity),
            .others = ownedOthers(view)};
}

}  // namespace TalIec61850Analysis
