#include <TalIec61850Parser/capture/ApplicationHeader.hpp>
#include <TalIec61850Parser/capture/FilterRule.hpp>
#include <TalIec61850Parser/codec/BerValue.hpp>
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
WalkStep takeName(Octets value, Goose& goose, std::vector<GooseIdentifer> const& filters,
                  std::optional<std::string> GooseIdentifer::*name) {
    goose.*name = toText(value);
    return nextIf(passes(filters, name, *(goose.*name)));
}

/// One primitive field of a goosePdu.
WalkStep takeField(BerElement const& field, Goose& goose,
                   std::vector<GooseIdentifer> const& filters) {
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
/// a goosePdu may lie deeper still.
WalkStep passData(BerElement const& element) {
    bool const isNested =
        element.tag == wire::kPrimitiveArray || element.tag == wire::kPrimitiveStructure;
    return isNested ? WalkStep::descend : WalkStep::skip;
}

/// What walkGoosePdu does with each element. Refers to its arguments.
auto gooseHandler(std::uint64_t filePosition, PcapPacketHeader const& header, Goose& goose,
                  Package& package, Filter const& filter) {
    return [&, filePosition](BerElement const& element, std::size_t position,
                             WalkLevel const& current) {
        if (element.tag == wire::kGoosePdu) {
            package.time = {header.tsSec, header.tsUsec};
            package.position = filePosition + position;
            return WalkStep::descend;
        }
        if (ber::isContextPrimitive(element.tag) && current.depth == kFieldDepth) {
            return takeField(element, goose, filter.gooseFilters);
        }
        if (ber::isContextPrimitive(element.tag) && current.depth > kFieldDepth) {
            return passData(element);
        }
        return ber::isStructure(element.tag, wire::kGoosePdu) ? WalkStep::descend : WalkStep::skip;
    };
}

}  // namespace

bool walkGoosePdu(Octets pdu, WalkLevel level, std::uint64_t filePosition,
                  PcapPacketHeader const& header, Goose& goose, Package& package,
                  Filter const& filter, WalkTrace* trace) {
    return walkElements(pdu, level, gooseHandler(filePosition, header, goose, package, filter),
                        trace);
}

bool walkGoosePduPassesOver(Octets tail) {
    Goose goose;
    Package package;
    return passesOverTail(tail, gooseHandler(0, {}, goose, package, {}));
}

bool walkGooseIdentity(Octets pdu, WalkLevel level, Goose& goose, Filter const& filter) {
    auto const handle = [&](BerElement const& element, std::size_t, WalkLevel const& current) {
        if (!ber::isContextPrimitive(element.tag)) {
            return ber::isStructure(element.tag, wire::kGoosePdu) ? WalkStep::descend
                                                                  : WalkStep::skip;
        }
        bool const isField =
            current.depth == kFieldDepth && ber::tagNumber(element.tag) != kAllData;
        return isField ? takeField(element, goose, filter.gooseFilters) : WalkStep::skip;
    };
    return walkElements(pdu, level, handle);
}

bool readGooseIdentity(Octets frame, std::size_t offset, Goose& goose, Filter const& filter) {
    auto const application = wire::readApplicationHeader(frame, offset);
    return application && takeApplicationHeader(*application, goose, filter.gooseFilters) &&
           walkGooseIdentity(application->pdu(), {}, goose, filter);
}

bool readGooseFrame(Octets data, std::size_t offset, PcapPacketHeader const& header,
                    std::uint64_t position, Goose& goose, Package& package, Filter const& filter,
                    WalkTrace* trace) {
    auto const application = wire::readApplicationHeader(data, offset);
    return application && takeApplicationHeader(*application, goose, filter.gooseFilters, trace) &&
           walkGoosePdu(application->pdu(), {}, position + offset + wire::ApplicationHeader::kSize,
                        header, goose, package, filter, trace);
}

}  // namespace TalIec61850Parser::detail
