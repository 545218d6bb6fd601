#include <TalIec61850Analysis/packet/FieldFilter.hpp>
#include <TalIec61850Analysis/packet/PduFrame.hpp>
#include <TalIec61850Analysis/packet/Reading.hpp>
#include <TalIec61850Analysis/packet/RedundancyFit.hpp>
#include <TalIec61850Analysis/packet/SvView.hpp>
#include <TalIec61850Parser/wire/SvTags.hpp>

namespace TalIec61850Analysis {

namespace {

namespace wire = TalIec61850Parser::wire;

constexpr KnownFields kSavPduFields = {.primitiveEnd = wire::kSecurity + 1};

/// What an element of a savPdu is.
enum class Role { field, sequence, other };

/// Shows the elements of the savPdu, or the sequence of ASDU alone where no savPdu leads to it.
/// @param handler  void handler(Role, ElementView const&, std::optional<FaultKind>), the fault
///                 being that of the element as a whole
template <typename Handler>
void walkPdu(SvView const& view, Handler const& handler) {
    if (!view.pdu) {
        if (view.sequence) {
            handler(Role::sequence, *view.sequence, view.sequence->fault);
        }
        return;
    }
    FieldFilter filter(kSavPduFields);
    for (ElementView const& element : view.pdu->members()) {
        if (element.offset == view.asdusOffset) {
            handler(Role::sequence, element, element.fault);
        } else if (filter.takes(element)) {
            handler(Role::field, element, element.fault);
        } else {
            handler(Role::other, element, filter.faultOf(element));
        }
    }
}

/// Sets the field of a savPdu that is made of an element.
/// @return what is wrong with it
std::optional<FaultKind> setField(ElementView const& element, SvView& view) noexcept {
    if (element.tag == wire::ber::primitive(wire::kNoAsdu)) {
        return set(view.noASDU, readCounter(element.octets));
    }
    view.security = element.octets;
    return std::nullopt;
}

/// Whether an element of a savPdu starts where the sequence of ASDU does.
bool leadsTo(std::size_t asdusOffset, ElementView const& savPdu) noexcept {
    for (ElementView const& element : savPdu.members()) {
        if (element.offset >= asdusOffset) {
            return element.offset == asdusOffset;
        }
    }
    return false;
}

/// Index in the frame of the sequence of ASDU, or of where there is none any more.
std::size_t findSequence(Octets frame, std::uint16_t linkType) noexcept {
    std::size_t const start = readFrameStart(frame, linkType).size;
    auto const savPdu = elementAt(frame, start, wire::kSavPdu);
    if (!savPdu) {
        return start;
    }
    for (ElementView const& element : savPdu->members()) {
        if (element.tag == wire::kSequenceOfAsdu) {
            return element.offset;
        }
    }
    return savPdu->end();
}

}  // namespace

void SvView::visitOthers(ElementSink sink) const {
    walkPdu(*this, [&](Role role, ElementView element, std::optional<FaultKind> fault) {
        if (role == Role::other) {
            element.fault = fault;
            sink(element);
        } else if (role == Role::sequence) {
            for (ElementView const& member : element.members()) {
                if (member.tag != wire::kAsdu) {
                    sink(member);
                }
            }
        }
    });
}

void SvView::visitFaults(FaultSink sink) const {
    Octets const readable = readablePart(frame);
    reportHeader(header, readable, origin, sink);
    if (pdu) {
        reportFault(pdu->offset, pdu->fault, sink);
    } else if (sequence) {
        sink({header.size, FaultKind::notThere});
    }
    SvView again;
    walkPdu(*this, [&](Role role, ElementView const& element, std::optional<FaultKind> fault) {
        reportFault(element.offset, role == Role::field ? setField(element, again) : fault, sink);
        if (role != Role::sequence) {
            return;
        }
        for (ElementView const& member : element.members()) {
            if (member.tag == wire::kAsdu) {
                viewAsdu(member).visitFaults(sink);
            } else {
                reportFault(member.offset, member.fault, sink);
            }
        }
    });
    if (!elementAt(readable, asdusOffset, wire::kSequenceOfAsdu)) {
        sink({asdusOffset, FaultKind::notThere});
    }
    reportUnread(frame, sink);
}

SvView viewSv(Octets frame, std::size_t asdusOffset, FrameOrigin const& origin) noexcept {
    Octets const readable = readablePart(frame);
    SvView view;
    view.frame = frame;
    view.origin = origin;
    view.header = readFrameStart(readable, origin.linkType);
    view.asdusOffset = asdusOffset;
    std::size_t const start = view.header.size;
    std::size_t end = start;
    auto const savPdu = elementAt(readable, start, wire::kSavPdu);
    view.sequence = elementAt(readable, asdusOffset, wire::kSequenceOfAsdu);
    if (savPdu && (!view.sequence || leadsTo(asdusOffset, *savPdu))) {
        view.pdu = savPdu;
        end = savPdu->end();
    } else if (view.sequence) {
        view.leading = octetsBetween(readable, start, asdusOffset);
        end = view.sequence->end();
    }
    walkPdu(view, [&](Role role, ElementView const& element, std::optional<FaultKind> /*fault*/) {
        if (role == Role::sequence) {
            view.sequence = element;
            view.asdus = AsduViews(element.members());
        } else if (role == Role::field) {
            static_cast<void>(setField(element, view));
        }
    });
    view.trailing = takeTail(readable, end, origin, view.header);
    return view;
}

SvView viewSv(Octets frame, FrameOrigin const& origin) noexcept {
    return viewSv(frame, findSequence(readablePart(frame), origin.linkType), origin);
}

}  // namespace TalIec61850Analysis
