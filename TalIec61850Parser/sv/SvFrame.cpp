#include <TalIec61850Parser/codec/BerValue.hpp>
#include <TalIec61850Parser/frame/Admission.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <TalIec61850Parser/wire/SvTags.hpp>
#include <vector>

namespace TalIec61850Parser::detail {

namespace {

using enum wire::AsduField;

/// The identity among the fields of an ASDU: stored, then matched.
WalkStep takeIdentity(BerElement const& field, Sv& sv, SvFilters const& filters) {
    switch (ber::tagNumber(field.tag)) {
        case kSvID:
            sv.svID = toText(field.value);
            return nextIf(passes(filters, &SvIdentifer::svID, *sv.svID));
        case kAsduConfRev:
            sv.confRev = toUint32(field.value);
            return nextIf(passes(filters, &SvIdentifer::confRev, *sv.confRev));
        default:
            return WalkStep::skip;
    }
}

/// One primitive field of an ASDU.
WalkStep takeAsduField(BerElement const& field, SvWalk const& walk) {
    switch (ber::tagNumber(field.tag)) {
        case kSmpCnt:
            walk.record.maxSmpCnt = toUint16(field.value);
            if (walk.trace != nullptr) {
                walk.trace->readAgain(field.value);
            }
            return WalkStep::next;
        case kSmpRate:
            walk.record.smpRate = toUint16(field.value);
            return WalkStep::next;
        default:
            return takeIdentity(field, walk.record, walk.filters);
    }
}

/// One primitive field outside every ASDU.
WalkStep takePduField(BerElement const& field, Sv& sv) {
    if (ber::tagNumber(field.tag) == wire::kNoAsdu) {
        sv.maxNoASDU = toUint8(field.value);
        return WalkStep::next;
    }
    return WalkStep::skip;
}

/// What walkSavPdu does with each element. Refers to its argument.
auto svHandler(SvWalk const& walk) {
    return [&walk](BerElement const& element, std::size_t index, WalkLevel& current) {
        if (element.tag == wire::kSequenceOfAsdu) {
            walk.package = {.time = walk.time, .position = walk.fileOffset + index};
            return WalkStep::descend;
        }
        if (ber::isContextPrimitive(element.tag)) {
            return current.inAsdu ? takeAsduField(element, walk)
                                  : takePduField(element, walk.record);
        }
        // Deliberate: from the first ASDU on, whatever follows on its level counts as in one.
        current.inAsdu = current.inAsdu || element.tag == wire::kAsdu;
        return ber::isStructure(element.tag, wire::kSavPdu) ? WalkStep::descend : WalkStep::skip;
    };
}

}  // namespace

bool walkSavPdu(Octets pdu, WalkLevel level, SvWalk const& walk) {
    return walkElements(pdu, level, svHandler(walk), walk.trace);
}

bool walkSavPduPassesOver(Octets tail) {
    Sv sv;
    Package package;
    SvFilters const none;
    SvWalk const walk{.record = sv, .filters = none, .package = package};
    return passesOverTail(tail, svHandler(walk));
}

bool walkSvIdentity(Octets pdu, WalkLevel level, Sv& sv, SvFilters const& filters) {
    auto const handle = [&](BerElement const& element, std::size_t, WalkLevel& current) {
        if (ber::isContextPrimitive(element.tag)) {
            return current.inAsdu ? takeIdentity(element, sv, filters) : WalkStep::skip;
        }
        // Deliberate: unlike above, an empty ASDU opens nothing.
        current.inAsdu = current.inAsdu || (element.tag == wire::kAsdu && !element.value.empty());
        return ber::isStructure(element.tag, wire::kSavPdu) ? WalkStep::descend : WalkStep::skip;
    };
    return walkElements(pdu, level, handle);
}

bool readSvIdentity(Octets frame, std::size_t index, Sv& sv, SvFilters const& filters) {
    auto const header = wire::readApplicationHeader(frame, index);
    return header && admitApplicationHeader(*header, sv, filters) &&
           walkSvIdentity(header->pdu(), {}, sv, filters);
}

}  // namespace TalIec61850Parser::detail
