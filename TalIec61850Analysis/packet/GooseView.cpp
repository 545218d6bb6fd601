#include <TalIec61850Analysis/packet/FieldFilter.hpp>
#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Analysis/packet/PduFields.hpp>
#include <TalIec61850Analysis/packet/PduFrame.hpp>
#include <TalIec61850Analysis/packet/Reading.hpp>
#include <TalIec61850Analysis/packet/RedundancyFit.hpp>
#include <TalIec61850Parser/wire/GooseTags.hpp>

namespace TalIec61850Analysis {

namespace wire = TalIec61850Parser::wire;
using wire::ber::primitive;

std::optional<FaultKind> setField(ElementView const& element, GooseView& view) noexcept {
    Octets const octets = element.octets;
    switch (*element.tag) {
        case primitive(wire::kGocbRef):
            return set(view.gocbRef, readText(octets));
        case primitive(wire::kTimeAllowedToLive):
            return set(view.timeAllowedtoLive, readCounter(octets));
        case primitive(wire::kDatSet):
            return set(view.datSet, readText(octets));
        case primitive(wire::kGoID):
            return set(view.goID, readText(octets));
        case primitive(wire::kEventTime):
            return set(view.t, readTime(octets));
        case primitive(wire::kStNum):
            return set(view.stNum, readCounter(octets));
        case primitive(wire::kSqNum):
            return set(view.sqNum, readCounter(octets));
        case primitive(wire::kSimulation):
            return set(view.simulation, readBoolean(octets));
        case primitive(wire::kConfRev):
            return set(view.confRev, readCounter(octets));
        case primitive(wire::kNdsCom):
            return set(view.ndsCom, readBoolean(octets));
        case primitive(wire::kNumDatSetEntries):
            return set(view.numDatSetEntries, readCounter(octets));
        default:
            view.allData = DataViews(element.members());
            return element.fault;
    }
}

void GooseView::visitOthers(ElementSink sink) const {
    if (!pdu) {
        return;
    }
    FieldFilter filter(kGooseFields);
    for (ElementView const& element : pdu->members()) {
        if (!filter.takes(element)) {
            filter.handOn(element, sink);
        }
    }
}

void GooseView::visitFaults(FaultSink sink) const {
    reportHeader(header, readablePart(frame), origin, sink);
    if (!pdu) {
        sink({pduOffset, FaultKind::notThere});
    } else {
        reportFault(pdu->offset, pdu->fault, sink);
        GooseView again;
        FieldFilter filter(kGooseFields);
        for (ElementView const& element : pdu->members()) {
            bool const isField = filter.takes(element);
            reportFault(element.offset,
                        isField ? setField(element, again) : filter.faultOf(element), sink);
            if (isField && element.tag == kGooseFields.constructed) {
                again.allData->visitFaults(sink);
            }
        }
    }
    reportUnread(frame, sink);
}

GooseView viewGoose(Octets frame, std::size_t pduOffset, FrameOrigin const& origin) noexcept {
    Octets const readable = readablePart(frame);
    GooseView view;
    view.frame = frame;
    view.origin = origin;
    view.header = readFrameStart(readable, origin.linkType);
    view.pduOffset = pduOffset;
    view.pdu = elementAt(readable, pduOffset, wire::kGoosePdu);
    std::size_t end = view.header.size;
    if (view.pdu) {
        end = view.pdu->end();
        view.leading = octetsBetween(readable, view.header.size, pduOffset);
        FieldFilter filter(kGooseFields);
        for (ElementView const& element : view.pdu->members()) {
            if (filter.takes(element)) {
                static_cast<void>(setField(element, view));
            }
        }
    }
    view.trailing = takeTail(readable, end, origin, view.header);
    return view;
}

GooseView viewGoose(Octets frame, FrameOrigin const& origin) noexcept {
    return viewGoose(frame, readFrameStart(readablePart(frame), origin.linkType).size, origin);
}

}  // namespace TalIec61850Analysis
