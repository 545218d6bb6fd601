#include "tools/commands/NumberCaptures.hpp"

#include <cstdint>

namespace TalIec61850Tools {

CaptureNumbers numberCaptures(std::vector<CaptureSource> const& captures) {
    CaptureNumbers numbers;
    for (std::uint32_t index = 0; index < captures.size(); ++index) {
        numbers.emplace(captures[index].path, index);
    }
    return numbers;
}

}  // namespace TalIec61850Tools
