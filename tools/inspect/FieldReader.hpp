#pragma once

// Internal: how the elements of a PDU become its fields.

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/inspect/ElementReader.hpp"
#include "tools/inspect/Fault.hpp"
#include "tools/inspect/Integer.hpp"
#include "tools/inspect/OctetString.hpp"
#include "tools/inspect/RawElement.hpp"
#include "tools/inspect/UtcTime.hpp"

namespace TalIec61850Tools {

/// What was made of the octets of a field, and what is wrong with them.
template <typename Value>
struct Reading {
    Value value;
    std::optional<FaultKind> fault = {};
};

// What fields are made of.

[[nodiscard]] Reading<std::string> readText(OctetString&& octets);
[[nodiscard]] Reading<Readable<bool>> readBoolean(OctetString&& octets);
[[nodiscard]] Reading<Readable<UtcTime>> readTime(OctetString&& octets);
/// An INTEGER that counts something, so that it is not negative.
[[nodiscard]] Reading<Integer> readCounter(OctetString&& octets);

/// Why an INTEGER is not what it should be.
[[nodiscard]] std::optional<FaultKind> faultOf(Integer const& integer);

/// Puts elements into fields, and those that fit none beside them.
class FieldReader {
public:
    /// @param others  takes the elements that no field takes; as `faults`, outlives the reader
    FieldReader(std::vector<RawElement>& others, Faults& faults)
        : others_(others), faults_(faults) {}

    /// Sets a field. An element that is not whole, and one for a field that is set, is kept beside
    /// the fields.
    /// @param read  makes a Reading of the octets
    template <typename Value, typename Read>
    void take(std::optional<Value>& field, Element&& element, Read&& read) {
        if (!element.fault && field) {
            element.fault = FaultKind::repeated;
        }
        if (element.fault) {
            keep(std::move(element));
            return;
        }
        auto reading = std::forward<Read>(read)(std::move(element.value.octets));
        report(element.offset, reading.fault);
        field = std::move(reading.value);
    }

    /// Keeps an element beside the fields.
    void keep(Element&& element);

    /// Notes what is wrong, if anything is.
    void report(std::size_t offset, std::optional<FaultKind> fault);

private:
    std::vector<RawElement>& others_;
    Faults& faults_;
};

}  // namespace TalIec61850Tools
