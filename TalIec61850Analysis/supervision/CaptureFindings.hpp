#pragma once

// Internal: findings that are of captures, or of several streams.

#include <TalIec61850Analysis/supervision/CaptureDrops.hpp>
#include <TalIec61850Analysis/supervision/ClockSteps.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Where a packet of a stream is.
[[nodiscard]] FindingPlace placeOf(TrafficIndex const& index, std::size_t stream, PacketRef packet);

/// Adds captureGap for each span in which all streams lack packets, by the gaps that are there, and
/// no packet came.
void addCaptureGaps(TrafficIndex const& index, std::vector<Finding>& findings);

/// Adds clockStep.
void addClockSteps(TrafficIndex const& index, std::vector<std::vector<ClockStep>> const& steps,
                   std::vector<Finding>& findings);

/// Adds captureDropped.
void addDrops(std::vector<CaptureDrop> const& drops, std::vector<Finding>& findings);

/// Adds recordsCut, fileEndsInRecord and unreadable.
void addUnread(TrafficIndex const& index, std::vector<Finding>& findings);

/// Adds twoPublishers where several sources send one svID or gocbRef.
void addSharedNames(TrafficIndex const& index, std::vector<Finding>& findings);

}  // namespace TalIec61850Analysis::detail
