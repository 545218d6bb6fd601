#include <TalIec61850Parser/codec/BerValue.hpp>
#include <TalIec61850Parser/frame/Admission.hpp>
#include <TalIec61850Parser/goose/GooseFrame.hpp>
#include <TalIec61850Parser/wire/GooseTags.hpp>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Parser::detail {

namespace {

using enum wire::GooseField;

constexpr std::int64_t kFieldDepth = 2;

/// Stores a name, then matches it: a rejected record shows what it was rejected for.
WalkStep takeName(Octets value, Goose& goose, GooseFilters const& filters,
                  std::optional<std::string> GooseIdentifer::*name) {
    goose.*name = toText(value);
    return nextIf(passes(filters, name, *(goose.*name)));
}

/// One primitive field of a goosePdu.
WalkStep takeField(BerElement const& field, Goose& goose, GooseFilters const& filters) {
    switch (ber::tagNumber(field.tag)) {
        case kGocbRef:
            return takeName(field.value, goose, filters, &GooseIdentifer::gocbRef);
        case kDatSet:
            // Deliberate: an empty datSet or goID is as good as none, an empty gocbRef is not.
            return field.value.empty()
                       ? WalkStep::next
                       : takeName(field.value, goose, filters, &GooseIdentifer::datSet);
        case kGoID:
            return field.value.empty()
                       ? WalkStep::next
                       : takeName(field.value, goose, filters, &GooseIdentifer::goID);
        case kSimulation:
            // Deliberate: that the element is there counts, not what it says.
            goose.simulation = true;
            return nextIf(passes(filters, &GooseIdentifer::simulation, true));
        case kConfRev:
            goose.confRev = toUint32(field.value);
            return nextIf(passes(filters, &GooseIdentifer::confRev, *goose.confRev));
        case kAllData:
            return WalkStep::descend;
        default:
            return WalkStep::skip;
    }
}

/// One primitive context-specific element inside allData: nothing there identifies the stream, but
/// a goosePdu may be deeper still.
WalkStep passData(BerElement const& element) {
    bool const isNested =
        element.tag == wire::kPrimitiveArray || element.tag == wire::kPrimitiveStructure;
    return isNested ? WalkStep::descend : WalkStep::skip;
}

/// What walkGoosePdu does with each element. Refers to its argument.
auto gooseHandler(GooseWalk const& walk) {
    return [&walk](BerElement const& element, std::size_t index, WalkLevel const& current) {
        if (element.tag == wire::kGoosePdu) {
            walk.package = {.time = walk.time, .position = walk.fileOffset + index};
            return WalkStep::descend;
        }
        if (ber::isContextPrimitive(element.tag) && current.depth == kFieldDepth) {
            return takeField(element, walk.record, walk.filters);
        }
        if (ber::isContextPrimitive(element.tag) && current.depth > kFieldDepth) {
            return passData(element);
        }
        return ber::isStructure(element.tag, wire::kGoosePdu) ? WalkStep::descend : WalkStep::skip;
    };
}

}  // namespace

bool walkGoosePdu(Octets pdu, WalkLevel level, GooseWalk const& walk) {
    return walkElements(pdu, level, gooseHandler(walk), walk.trace);
}

bool walkGoosePduPassesOver(Octets tail) {
    Goose goose;
    Package package;
    GooseFilters const none;
    GooseWalk const walk{.record = goose, .filters = none, .package = package};
    return passesOverTail(tail, gooseHandler(walk));
}

bool walkGooseIdentity(Octets pdu, WalkLevel level, Goose& goose, GooseFilters const& filters) {
    auto const handle = [&](BerElement const& element, std::size_t, WalkLevel const& current) {
        if (!ber::isContextPrimitive(element.tag)) {
            return ber::isStructure(element.tag, wire::kGoosePdu) ? WalkStep::descend
                                                                  : WalkStep::skip;
        }
        bool const isField =
            current.depth == kFieldDepth && ber::tagNumber(element.tag) != kAllData;
        return isField ? takeField(element, goose, filters) : WalkStep::skip;
    };
    return walkElements(pdu, level, handle);
}

bool readGooseIdentity(Octets frame, std::size_t index, Goose& goose, GooseFilters const& filters) {
    auto const header = wire::readApplicationHeader(frame, index);
    return header && admitApplicationHeader(*header, goose, filters) &&
           walkGooseIdentity(header->pdu(), {}, goose, filters);
}

}  // namespace TalIec61850Parser::detail
