#pragma once

// Internal: data sets with all their values.

#include <TalIec61850Scl/model/DataSet.hpp>
#include <TalIec61850Scl/read/DiagnosticList.hpp>
#include <TalIec61850Scl/read/Document.hpp>
#include <TalIec61850Scl/read/LogicalNodes.hpp>
#include <TalIec61850Scl/read/MemberWalk.hpp>
#include <TalIec61850Scl/read/NamedChildren.hpp>
#include <TalIec61850Scl/read/TypeLeaves.hpp>
#include <TalIec61850Scl/read/TypeTable.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Scl::detail {

/// Reads the data sets of one file.
class DataSetReader {
public:
    /// All have to outlive this object.
    DataSetReader(Document const& document, DiagnosticList& diagnostics, NamedChildren& children);

    /// @param element  DataSet
    /// @param nodes    of its IED
    /// @param ied, reference  as the result has them
    [[nodiscard]] DataSet read(Element element, LogicalNodes& nodes, std::string_view ied,
                               std::string reference);

private:
    /// An FCDA.
    struct Entry {
        explicit Entry(Element fcda);

        Element element;
        std::string_view ldInst;
        std::string_view prefix;
        std::string_view lnClass;
        std::string_view lnInst;
        std::string_view doName;
        std::string_view daName;
        std::string_view fc;
        std::string_view ix;
        /// The first of the attributes that it has to have, and has not; else empty.
        std::string_view missing;
        /// Device and logical node.
        std::string node;

        /// As it calls what it leads to.
        [[nodiscard]] std::string reference() const;
    };
    struct Step {
        std::string_view name;
        /// In parentheses after the name, of an array.
        std::optional<std::uint32_t> index;
    };
    /// Where an FCDA leads to.
    struct Target {
        WalkPlace from;
        WalkPlace place;
        FunctionalConstraint constraint = kAnyConstraint;
        std::string_view constraintText;
        std::string name;
        /// Of the logical node.
        std::string_view text;
    };

    /// @return false where there are more values than fit
    bool addEntry(Entry const& entry, LogicalNodes& nodes, std::uint32_t number, DataSet& dataSet);
    [[nodiscard]] std::optional<Target> targetOf(Entry const& entry, LogicalNodes& nodes);
    /// @return not set where it is no path
    [[nodiscard]] static std::optional<std::vector<Step>> stepsOf(Entry const& entry);
    [[nodiscard]] bool follow(Target& target, TypeNumber type, std::vector<Step> const& steps,
                              std::optional<std::uint32_t> index);
    void reject(Entry const& entry);

    Document const& document_;
    DiagnosticList& diagnostics_;
    TypeTable types_;
    TypeLeaves leaves_;
    FileBudget budget_;
    MemberWalk walk_;
};

}  // namespace TalIec61850Scl::detail
