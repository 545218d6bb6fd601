#include <TalIec61850Analysis/packet/AsduView.hpp>
#include <TalIec61850Analysis/packet/FieldFilter.hpp>
#include <TalIec61850Analysis/packet/PduFields.hpp>
#include <TalIec61850Analysis/packet/Reading.hpp>
#include <TalIec61850Parser/wire/SvTags.hpp>

namespace TalIec61850Analysis {

namespace wire = TalIec61850Parser::wire;
using wire::ber::primitive;

std::optional<FaultKind> setField(ElementView const& element, AsduView& view) noexcept {
    Octets const octets = element.octets;
    switch (*element.tag) {
        case primitive(wire::kSvID):
            return set(view.svID, readText(octets));
        case primitive(wire::kAsduDatSet):
            return set(view.datSet, readText(octets));
        case primitive(wire::kSmpCnt):
            return set(view.smpCnt, readNumber(octets, 2));
        case primitive(wire::kAsduConfRev):
            return set(view.confRev, readNumber(octets, 4));
        case primitive(wire::kRefrTm):
            return set(view.refrTm, readTime(octets));
        case primitive(wire::kSmpSynch):
            return set(view.smpSynch, readNumber(octets, 1));
        case primitive(wire::kSmpRate):
            return set(view.smpRate, readNumber(octets, 2));
        case primitive(wire::kSmpMod):
            return set(view.smpMod, readNumber(octets, 2));
        case primitive(wire::kGmIdentity):
            return set(view.gmIdentity, readOctets(octets, 8));
        default:
            view.seqData = SamplesView(octets);
            return std::nullopt;
    }
}

void AsduView::visitOthers(ElementSink sink) const {
    FieldFilter filter(kAsduFields);
    for (ElementView const& field : element.members()) {
        if (!filter.takes(field)) {
            filter.handOn(field, sink);
        }
    }
}

void AsduView::visitFaults(FaultSink sink) const {
    reportFault(element.offset, element.fault, sink);
    AsduView again;
    FieldFilter filter(kAsduFields);
    for (ElementView const& field : element.members()) {
        reportFault(field.offset,
                    filter.takes(field) ? setField(field, again) : filter.faultOf(field), sink);
    }
}

AsduView viewAsdu(ElementView const& element) noexcept {
    AsduView view;
    view.element = element;
    FieldFilter filter(kAsduFields);
    for (ElementView const& field : element.members()) {
        if (filter.takes(field)) {
            static_cast<void>(setField(field, view));
        }
    }
    return view;
}

void AsduViews::Iterator::passOverOthers() noexcept {
    while (element_ != std::default_sentinel && element_->tag != wire::kAsdu) {
        ++element_;
    }
}

}  // namespace TalIec61850Analysis
