#pragma once

// Internal: by which name a control block's messages are known.

#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <string>

namespace TalIec61850Scl::detail {

/// The name that the key of its stream has: gocbRef, or svID. Empty where the description has none.
[[nodiscard]] inline std::string const& wireNameOf(ControlBlock const& block) noexcept {
    bool const isGoose = block.protocol == TalIec61850Analysis::StreamProtocol::goose;
    return isGoose ? block.reference : block.id;
}

}  // namespace TalIec61850Scl::detail
