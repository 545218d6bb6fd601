#include "tools/inspect/SampleQuality.hpp"

namespace TalIec61850Tools {

Quality SampleQuality::quality() const { return qualityFromBits(word); }

std::string toText(SampleQuality const& quality) {
    return toText(quality.quality()) + (quality.derived() ? ", derived" : "");
}

}  // namespace TalIec61850Tools
