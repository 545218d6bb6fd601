#pragma once

#include <TalIec61850Analysis/time/TimeWindow.hpp>

namespace TalIec61850Tools {

using TalIec61850Analysis::TimeWindow;

}  // namespace TalIec61850Tools
