#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/store/Goose.hpp>
#include <cstddef>
#include <unordered_set>

namespace TalIec61850Parser {

/// The set of GOOSE streams, told apart by GooseHash and GooseEqual.
struct TALIEC61850PARSER_EXPORT GooseProto {
    /// Every stream once. Node-based: references to a stream stay valid until it is erased.
    std::unordered_set<Goose, GooseHash, GooseEqual> streams;

    /// Finds the stream equal to the candidate, or stores the candidate.
    /// @param goose  moved from only when it is stored
    /// @return the stored record, valid until it is erased from the set
    Goose const& addGoose(Goose&& goose);

    /// The same with a default-constructed candidate.
    void addGoose();

    /// The number of stored streams.
    [[nodiscard]] std::size_t getGooseCount() const;
};

}  // namespace TalIec61850Parser
