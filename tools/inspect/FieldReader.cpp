#include "tools/inspect/FieldReader.hpp"

namespace TalIec61850Tools {

Reading<std::string> readText(OctetString&& octets) { return {{octets.begin(), octets.end()}}; }

Reading<Readable<bool>> readBoolean(OctetString&& octets) {
    if (octets.size() != 1) {
        return {std::move(octets), FaultKind::wrongLength};
    }
    return {octets.front() != 0};
}

Reading<Readable<UtcTime>> readTime(OctetString&& octets) {
    if (auto const time = readUtcTime(octets)) {
        return {*time};
    }
    return {std::move(octets), FaultKind::wrongLength};
}

std::optional<FaultKind> faultOf(Integer const& integer) {
    if (auto const* const octets = std::get_if<OctetString>(&integer)) {
        return octets->empty() ? FaultKind::wrongLength : FaultKind::tooWide;
    }
    return std::nullopt;
}

Reading<Integer> readCounter(OctetString&& octets) {
    Integer integer = readInteger(octets);
    auto const fault = isNegative(integer) ? FaultKind::negative : faultOf(integer);
    return {std::move(integer), fault};
}

void FieldReader::keep(Element&& element) {
    report(element.offset, element.fault);
    others_.push_back(toRaw(std::move(element)));
}

void FieldReader::report(std::size_t offset, std::optional<FaultKind> fault) {
    if (fault) {
        faults_.push_back({offset, *fault});
    }
}

}  // namespace TalIec61850Tools
