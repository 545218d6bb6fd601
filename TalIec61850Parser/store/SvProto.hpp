#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <cstddef>
#include <unordered_set>

namespace TalIec61850Parser {

/// The set of SV streams, told apart by SvHash and SvEqual.
struct TALIEC61850PARSER_EXPORT SvProto {
    /// Every stream once. Node-based: references to a stream stay valid until it is erased.
    std::unordered_set<Sv, SvHash, SvEqual> streams;

    /// Finds the stream equal to the candidate, or stores the candidate.
    /// @param sv  moved from only when it is stored
    /// @return the stored record, valid until it is erased from the set
    Sv const& addSv(Sv&& sv);

    /// The same with a default-constructed candidate.
    void addSv();

    /// The number of stored streams.
    [[nodiscard]] std::size_t getSvCount() const;
};

}  // namespace TalIec61850Parser
