#include "tools/inspect/SampleQuality.hpp"

namespace TalIec61850Tools {

Quality SampleQuality::quality() const { return qualityFromBits(word); }

}  // namespace TalIec61850Tools
