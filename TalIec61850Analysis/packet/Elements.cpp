#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>
#include <algorithm>

namespace TalIec61850Analysis {

namespace {

using TalIec61850Parser::wire::BerForm;

/// The element at the start of `rest`, which is not empty.
ElementView readElement(Octets rest, std::size_t offset, std::size_t levelEnd) noexcept {
    auto const header = TalIec61850Parser::wire::readBerHeader(rest);
    auto const pastEnd = [&](std::size_t elementEnd) {
        return elementEnd > levelEnd ? FaultKind::pastParent : FaultKind::pastCapture;
    };
    auto const unreadable = [&](FaultKind fault) {
        return ElementView{.offset = offset,
                           .tag = {},
                           .octets = rest,
                           .valueOffset = offset,
                           .claimedEnd = levelEnd,
                           .fault = fault};
    };
    switch (header.form) {
        case BerForm::longIdentifier:
            return unreadable(FaultKind::longIdentifier);
        case BerForm::indefiniteLength:
            return unreadable(FaultKind::indefiniteLength);
        case BerForm::longLength:
            return unreadable(FaultKind::longLength);
        case BerForm::cut:
            return unreadable(pastEnd(offset + rest.size() + 1));
        case BerForm::readable:
            break;
    }
    Octets const value = rest.subspan(header.size);
    std::size_t const valueOffset = offset + header.size;
    ElementView element{.offset = offset,
                        .tag = header.tag,
                        .octets = value.first(std::min<std::size_t>(header.length, value.size())),
                        .valueOffset = valueOffset,
                        .claimedEnd = valueOffset + header.length,
                        .fault = {}};
    if (header.length > value.size()) {
        element.fault = pastEnd(element.claimedEnd);
    }
    return element;
}

}  // namespace

Elements::Iterator Elements::begin() const noexcept { return {octets_, offset_, claimedEnd_}; }

Elements::Iterator Elements::end() const noexcept {
    return {octets_.last(0), offset_ + octets_.size(), claimedEnd_};
}

Elements::Iterator::Iterator(Octets rest, std::size_t offset, std::size_t claimedEnd) noexcept
    : rest_(rest), levelEnd_(claimedEnd) {
    element_.valueOffset = offset;
    read();
}

Elements::Iterator& Elements::Iterator::operator++() noexcept {
    rest_ = rest_.last(static_cast<std::size_t>(rest_.data() + rest_.size() -
                                                (element_.octets.data() + element_.octets.size())));
    read();
    return *this;
}

void Elements::Iterator::read() noexcept {
    if (!rest_.empty()) {
        element_ = readElement(rest_, element_.end(), levelEnd_);
    }
}

}  // namespace TalIec61850Analysis
