#include <TalIec61850Parser/capture/ApplicationHeader.hpp>
#include <TalIec61850Parser/capture/FilterRule.hpp>
#include <TalIec61850Parser/codec/BerValue.hpp>
#include <TalIec61850Parser/sv/SvFrame.hpp>
#include <TalIec61850Parser/wire/SvTags.hpp>
#include <vector>

namespace TalIec61850Parser::detail {

namespace {

using enum wire::AsduField;

/// The identity among the fields of an ASDU: stored, then matched.
WalkStep takeIdentity(BerElement const& field, Sv& sv, std::vector<SvIdentifer> const& filters) {
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
WalkStep takeAsduField(BerElement const& field, Sv& sv, std::vector<SvIdentifer> const& filters,
                       WalkTrace* trace) {
    switch (ber::tagNumber(field.tag)) {
        case kSmpCnt:
            sv.maxSmpCnt = toUint16(field.value);
            if (trace != nullptr) {
                trace->readAgain(field.value);
            }
            return WalkStep::next;
        case kSmpRate:
            sv.smpRate = toUint16(field.value);
            return WalkStep::next;
        default:
            return takeIdentity(field, sv, filters);
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

/// What walkSavPdu does with each element. Refers to its arguments.
auto svHandler(std::uint64_t filePosition, PcapPacketHeader const& header, Sv& sv, Package& package,
               Filter const& filter, WalkTrace* trace) {
    return [&, filePosition, trace](BerElement const& element, std::size_t position,
                                    WalkLevel& current) {
        if (element.tag == wire::kSequenceOfAsdu) {
            package.time = {header.tsSec, header.tsUsec};
            package.position = filePosition + position;
            return WalkStep::descend;
        }
        if (ber::isContextPrimitive(element.tag)) {
            return current.inAsdu ? takeAsduField(element, sv, filter.svFilters, trace)
                                  : takePduField(element, sv);
        }
        // Deliberate: from the first ASDU on, whatever follows on its level counts as in one.
        current.inAsdu = current.inAsdu || element.tag == ber::kSequence;
        return ber::isStructure(element.tag, wire::kSavPdu) ? WalkStep::descend : WalkStep::skip;
    };
}

}  // namespace

bool walkSavPdu(Octets pdu, WalkLevel level, std::uint64_t filePosition,
                PcapPacketHeader const& header, Sv& sv, Package& package, Filter const& filter,
                WalkTrace* trace) {
    return walkElements(pdu, level, svHandler(filePosition, header, sv, package, filter, trace),
                        trace);
}

bool walkSavPduPassesOver(Octets tail) {
    Sv sv;
    Package package;
    return passesOverTail(tail, svHandler(0, {}, sv, package, {}, nullptr));
}

bool walkSvIdentity(Octets pdu, WalkLevel level, Sv& sv, Filter const& filter) {
    auto const handle = [&](BerElement const& element, std::size_t, WalkLevel& current) {
        if (ber::isContextPrimitive(element.tag)) {
            return current.inAsdu ? takeIdentity(element, sv, filter.svFilters) : WalkStep::skip;
        }
        // Deliberate: unlike above, an empty ASDU opens nothing.
        current.inAsdu =
            current.inAsdu || (element.tag == ber::kSequence && !element.value.empty());
        return ber::isStructure(element.tag, wire::kSavPdu) ? WalkStep::descend : WalkStep::skip;
    };
    return walkElements(pdu, level, handle);
}

bool readSvIdentity(Octets frame, std::size_t offset, Sv& sv, Filter const& filter) {
    auto const application = wire::readApplicationHeader(frame, offset);
    return application && takeApplicationHeader(*application, sv, filter.svFilters) &&
           walkSvIdentity(application->pdu(), {}, sv, filter);
}

bool readSvFrame(Octets data, std::size_t offset, PcapPacketHeader const& header,
                 std::uint64_t position, Sv& sv, Package& package, Filter const& filter,
                 WalkTrace* trace) {
    auto const application = wire::readApplicationHeader(data, offset);
    return application && takeApplicationHeader(*application, sv, filter.svFilters, trace) &&
           walkSavPdu(application->pdu(), {}, position + offset + wire::ApplicationHeader::kSize,
                      header, sv, package, filter, trace);
}

}  // namespace TalIec61850Parser::detail
