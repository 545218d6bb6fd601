#pragma once

#include <TalIec61850Scl/model/BasicType.hpp>
#include <TalIec61850Scl/model/Diagnostic.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Scl {

/// From what is sent to a quantity: value x factor + offset, in the unit.
struct MemberScale {
    /// Units for one count: scaleFactor of sVC. 1 where a value is sent as it is.
    double factor = 1;
    /// In the unit: offset of sVC.
    double offset = 0;

    /// Member by member.
    friend bool operator==(MemberScale const&, MemberScale const&) = default;
};

/// One value of a data set: a leaf of what the FCDAs of the data set lead to.
struct DataSetMember {
    /// Where it is in a message: by index from 0, that of the FCDA first, then inside it.
    std::vector<std::uint32_t> path;
    /// Which of the values that it is in are arrays; the others are structures. The lowest bit is
    /// that of the outermost value.
    std::uint64_t arrays = 0;
    /// Its reference in its IED: LD0/PTRC1.Op.general. With brackets where it is an element of an
    /// array: LD0/MHAI1.HA.phsAHar(3).mag.f
    std::string name;
    /// The functional constraint: ST, MX ...
    std::string fc;
    /// The type, as the file writes it: BOOLEAN, INT32, Enum ... Empty where it is not known.
    std::string bType;
    /// The type.
    BasicType type = BasicType::unknown;
    /// What it is called: the text of the instance's DAI or DOI, else of the DA or DO of its type
    /// (desc, or the value of dU), else of its logical node. Empty where there is none.
    std::string desc;
    /// The unit of values that are scaled, with its multiplier: "A", "kV". Empty where the
    /// description has none.
    std::string unit;
    /// Not set where the description has none.
    std::optional<MemberScale> scale;

    /// Whether the value at the first steps of the path is an array.
    /// @param steps  less than the path has, from 1
    [[nodiscard]] bool isInArray(std::size_t steps) const noexcept {
        constexpr std::size_t kMost = 64;
        return steps > 0 && steps <= kMost && (arrays >> (steps - 1) & 1U) != 0;
    }

    /// Member by member.
    friend bool operator==(DataSetMember const&, DataSetMember const&) = default;
};

/// What the messages of a control block hold.
struct DataSet {
    /// The IED that it is of.
    std::string ied;
    /// On the wire: IED1LD0/LLN0$dsTrip.
    std::string reference;
    /// How many FCDAs it has: values of allData at the outermost level.
    std::uint32_t entries = 0;
    /// All values, in the order in which a message has them. An FCDA that leads to nothing is one
    /// value of an unknown type.
    std::vector<DataSetMember> members;
    /// Where it is described.
    SclPlace place;

    /// Member by member.
    friend bool operator==(DataSet const&, DataSet const&) = default;
};

}  // namespace TalIec61850Scl
