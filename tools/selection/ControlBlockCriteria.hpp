#pragma once

#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <string>
#include <vector>

#include "tools/selection/PacketCriteria.hpp"

namespace TalIec61850Tools {

/// The control blocks of a description that a command reads.
struct ControlBlockCriteria {
    /// Names of IEDs, in which * matches any text and ? any character; empty for all.
    std::vector<std::string> ieds;
    /// What the streams should be; a control block has no source address.
    PacketCriteria streams;

    /// Whether an IED is wanted.
    [[nodiscard]] bool admitIed(std::string const& ied) const;

    /// Whether the streams that a control block describes are wanted, whatever its IED.
    [[nodiscard]] bool admitDescribed(TalIec61850Scl::ControlBlock const& block) const;

    /// Whether a control block is wanted.
    [[nodiscard]] bool admit(TalIec61850Scl::ControlBlock const& block) const {
        return admitIed(block.ied) && admitDescribed(block);
    }
};

}  // namespace TalIec61850Tools
