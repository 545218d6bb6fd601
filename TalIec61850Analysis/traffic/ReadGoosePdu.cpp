#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/traffic/ReadGoosePdu.hpp>
#include <TalIec61850Parser/wire/GooseTags.hpp>
#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <iterator>
#include <system_error>

namespace TalIec61850Analysis::detail {

namespace wire = TalIec61850Parser::wire;

namespace {

[[noreturn]] void throwStale() { throw std::system_error(ESTALE, std::generic_category()); }

/// The size of a PDU by its own length.
std::size_t pduSizeAt(CaptureWindow& window, std::uint32_t file, std::uint64_t fileOffset) {
    constexpr std::size_t kMostHeader = 8;
    Octets const header = window.at(file, fileOffset, kMostHeader);
    auto const start = Elements(header).begin();
    if (start == std::default_sentinel || !start->tag) {
        throwStale();
    }
    return std::min(start->claimedEnd, kMaxFrameSize);
}

}  // namespace

Octets readGoosePdu(CaptureWindow& window, std::uint32_t file, std::uint64_t fileOffset) {
    std::size_t const size = pduSizeAt(window, file, fileOffset);
    Octets const pdu = window.at(file, fileOffset, size);
    if (pdu.size() < size) {
        throwStale();
    }
    return pdu;
}

Octets readCutGoosePdu(CaptureWindow& window, std::uint32_t file, std::uint64_t fileOffset) {
    std::size_t const size = pduSizeAt(window, file, fileOffset);
    Octets const pdu = window.at(file, fileOffset, size);
    auto const start = Elements(pdu).begin();
    if (start != std::default_sentinel && start->tag) {
        for (ElementView const& element : start->members()) {
            if (element.tag == wire::ber::primitive(wire::kStNum) && !element.fault) {
                return pdu.first(element.end());
            }
        }
    }
    throwStale();
}

}  // namespace TalIec61850Analysis::detail
