#pragma once

// Internal: which elements of a PDU its fields are made of.

#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>
#include <cstdint>
#include <optional>

namespace TalIec61850Analysis {

/// The fields that a PDU can have.
struct KnownFields {
    /// Those in primitive form have tag numbers below this.
    std::uint8_t primitiveEnd = 0;
    /// The identifier octet of one in constructed form, which is read even where it is cut.
    std::optional<std::uint8_t> constructed = {};
};

/// Tells fields from other elements, when shown all elements of a PDU in their order. The first
/// whole element of a tag is the field.
class FieldFilter {
public:
    explicit FieldFilter(KnownFields known) : known_(known) {}

    /// Whether a field is made of the element.
    [[nodiscard]] bool takes(ElementView const& element) noexcept {
        namespace ber = TalIec61850Parser::wire::ber;
        isRepeated_ = false;
        if (!element.tag) {
            return false;
        }
        std::uint8_t const tag = *element.tag;
        bool const isConstructed = tag == known_.constructed;
        bool const isPrimitive =
            ber::isContextPrimitive(tag) && ber::tagNumber(tag) < known_.primitiveEnd;
        if (!isConstructed && (!isPrimitive || element.fault)) {
            return false;
        }
        std::uint32_t const bit = std::uint32_t{1} << ber::tagNumber(tag);
        isRepeated_ = (taken_ & bit) != 0;
        taken_ |= bit;
        return !isRepeated_;
    }

    /// The fault of the element that was shown last, and not taken.
    [[nodiscard]] std::optional<FaultKind> faultOf(ElementView const& element) const noexcept {
        return !element.fault && isRepeated_ ? FaultKind::repeated : element.fault;
    }

    /// Hands on the element that was shown last, and not taken.
    void handOn(ElementView element, ElementSink sink) const {
        element.fault = faultOf(element);
        sink(element);
    }

private:
    KnownFields known_;
    /// A bit for each tag number; primitive and constructed fields share none.
    std::uint32_t taken_ = 0;
    bool isRepeated_ = false;
};

}  // namespace TalIec61850Analysis
