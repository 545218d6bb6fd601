#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>
#include <algorithm>

namespace TalIec61850Analysis {

namespace {

using TalIec61850Parser::wire::BerForm;
using TalIec61850Parser::wire::BerHeader;

/// @param end  of the level, as far as it was captured
FaultKind faultOf(BerForm form, std::size_t end, std::size_t levelEnd) {
    switch (form) {
        case BerForm::longIdentifier:
            return FaultKind::longIdentifier;
        case BerForm::indefiniteLength:
            return FaultKind::indefiniteLength;
        case BerForm::longLength:
            return FaultKind::longLength;
        default:
            return end < levelEnd ? FaultKind::pastCapture : FaultKind::pastParent;
    }
}

}  // namespace

Elements::Iterator Elements::begin() const noexcept { return {octets_, offset_, claimedEnd_}; }

Elements::Iterator::Iterator(Octets rest, std::size_t offset, std::size_t levelEnd) noexcept
    : rest_(rest), levelEnd_(levelEnd) {
    read(offset);
}

Elements::Iterator& Elements::Iterator::operator++() noexcept {
    std::size_t const end = element_.end();
    rest_ = rest_.subspan(end - element_.offset);
    read(end);
    return *this;
}

// In place: copies of an element just written cost more than reading it.
void Elements::Iterator::read(std::size_t offset) noexcept {
    if (rest_.empty()) {
        return;
    }
    BerHeader const header = TalIec61850Parser::wire::readBerHeader(rest_);
    std::size_t const end = offset + rest_.size();
    element_.offset = offset;
    if (header.form != BerForm::readable) {
        element_.tag.reset();
        element_.octets = rest_;
        element_.valueOffset = offset;
        element_.claimedEnd = levelEnd_;
        element_.fault = faultOf(header.form, end, levelEnd_);
        return;
    }
    element_.tag = header.tag;
    element_.valueOffset = offset + header.size;
    element_.claimedEnd = element_.valueOffset + header.length;
    element_.octets =
        rest_.subspan(header.size, std::min(element_.claimedEnd, end) - element_.valueOffset);
    element_.fault.reset();
    if (element_.claimedEnd > end) {
        element_.fault =
            element_.claimedEnd > levelEnd_ ? FaultKind::pastParent : FaultKind::pastCapture;
    }
}

}  // namespace TalIec61850Analysis
