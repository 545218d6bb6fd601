#pragma once

// Internal: a stream, and what is described of it.

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>

namespace TalIec61850Scl::detail {

/// A stream that a control block publishes. Index and description outlive it.
struct DescribedStream {
    TalIec61850Analysis::TrafficIndex const& index;
    TalIec61850Analysis::TrafficStream const& stream;
    ControlBlock const& block;
    /// Null where the description has none of that name.
    DataSet const* dataSet = nullptr;

    [[nodiscard]] bool isGoose() const noexcept {
        return stream.key.protocol == TalIec61850Analysis::StreamProtocol::goose;
    }
};

}  // namespace TalIec61850Scl::detail
