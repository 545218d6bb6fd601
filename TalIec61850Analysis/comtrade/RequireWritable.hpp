#pragma once

// Internal: what all writers of a record ask first.

#include <TalIec61850Analysis/comtrade/ComtradeLimit.hpp>
#include <stdexcept>

namespace TalIec61850Analysis::detail {

/// @throws std::invalid_argument  the record cannot be written
inline void requireWritable(ComtradeRecord const& record) {
    if (brokenLimit(record)) {
        throw std::invalid_argument("ComtradeRecord: see brokenLimit");
    }
}

}  // namespace TalIec61850Analysis::detail
