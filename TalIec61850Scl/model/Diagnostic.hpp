#pragma once

#include <TalIec61850Scl/Export.hpp>
#include <cstdint>
#include <string>
#include <string_view>

namespace TalIec61850Scl {

/// What is wrong with a description. The rest of it is read all the same.
enum class DiagnosticCode : std::uint8_t {
    notXml,                 ///< XML that cannot be parsed, from this line on
    notScl,                 ///< no element SCL
    missingLNodeType,       ///< a logical node has a type that is not there
    missingDOType,          ///< a data object has a type that is not there
    missingDAType,          ///< a data attribute has a type that is not there
    badFcda,                ///< a member of a data set that leads to nothing
    badAddress,             ///< MAC address, APPID, VLAN or a time that cannot be read
    missingAttribute,       ///< an attribute that an element has to have
    badNumber,              ///< an attribute that should be a number and is none
    nestingTooDeep,         ///< types nested deeper than any are, mostly because one holds itself
    missingDataSet,         ///< a control block has a data set that is not there
    missingControlBlock,    ///< an address, or a subscriber, of a control block that is not there
    missingIed,             ///< an access point, or a subscriber, of an IED that is not there
    duplicateControlBlock,  ///< a control block that is there already, and is another; the first
                            ///< one counts
    tooManyMembers,         ///< a data set with more values than any message holds
    unknownBType,           ///< a data attribute of a basic type that there is not
    duplicateType,          ///< a type of a kind and id that another has already; the first counts
    memoryLimit,            ///< control blocks, addresses and subscribers that together would take
                            ///< far more memory than the file; from there on they are left out
    unreadableFile,         ///< a file that cannot be read; its place has no line
};

/// The code as documents name it: "MissingLNodeType". It never changes.
[[nodiscard]] TALIEC61850SCL_EXPORT std::string_view nameOf(DiagnosticCode code) noexcept;

/// A place in a description.
struct SclPlace {
    /// The number of the file among those that were read.
    std::uint32_t file = 0;
    /// From 1; 0 where it is not known.
    std::uint32_t line = 0;

    /// Member by member.
    friend bool operator==(SclPlace const&, SclPlace const&) = default;
};

/// One thing that is wrong with a description.
struct Diagnostic {
    /// What it is.
    DiagnosticCode code = DiagnosticCode::notXml;
    /// Where it is.
    SclPlace place;
    /// What it is about, as the file writes it: the name of a type, a reference, a value. Of a file
    /// that cannot be read, why, in the words of the system.
    std::string subject;

    /// Member by member.
    friend bool operator==(Diagnostic const&, Diagnostic const&) = default;
};

}  // namespace TalIec61850Scl
