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

    /// Whether a field is made of the element. Notes in one that comes too late that it is
    /// repeated.
    [[nodiscard]] bool takes(ElementView& element) noexcept {
        namespace ber = TalIec61850Parser::wire::ber;
        if (!element.tag) {
            return false;
        }
        bool const isConstructed = element.tag == known_.constructed;
        bool const isPrimitive = ber::isContextPrimitive(*element.tag) &&
                                 ber::tagNumber(*element.tag) < known_.primitiveEnd;
        if (!isConstructed && (!isPrimitive || element.fault)) {
            return false;
        }
        std::uint32_t const bit = std::uint32_t{1} << ber::tagNumber(*element.tag);
        if ((taken_ & bit) != 0) {
            element.fault = element.fault.value_or(FaultKind::repeated);
            return false;
        }
        taken_ |= bit;
        return true;
    }

private:
    KnownFields known_;
    /// A bit for each tag number; primitive and constructed fields share none.
    std::uint32_t taken_ = 0;
};

}  // namespace TalIec61850Analysis
