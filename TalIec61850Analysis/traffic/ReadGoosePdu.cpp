#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/traffic/ReadGoosePdu.hpp>
#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <iterator>
#include <system_error>

namespace TalIec61850Analysis::detail {

Octets readGoosePdu(CaptureWindow& window, std::uint32_t file, std::uint64_t fileOffset) {
    constexpr std::size_t kMostHeader = 8;
    Octets const header = window.at(file, fileOffset, kMostHeader);
    auto const start = Elements(header).begin();
    bool const isThere = start != std::default_sentinel && start->tag;
    std::size_t const size = isThere ? std::min(start->claimedEnd, kMaxFrameSize) : std::size_t{0};
    Octets const pdu = window.at(file, fileOffset, size);
    if (!isThere || pdu.size() < size) {
        throw std::system_error(ESTALE, std::generic_category());
    }
    return pdu;
}

}  // namespace TalIec61850Analysis::detail
