#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Analysis/supervision/GooseContentReader.hpp>
#include <TalIec61850Analysis/traffic/ReadGoosePdu.hpp>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <optional>
#include <system_error>
#include <variant>

namespace TalIec61850Analysis::detail {

namespace {

constexpr std::uint8_t kSqNum = 0x86;

std::optional<std::int64_t> plainNumberIn(std::optional<IntegerView> const& value) {
    if (!value) {
        return std::nullopt;
    }
    auto const* const number = std::get_if<std::int64_t>(&*value);
    return number != nullptr ? std::optional(*number) : std::nullopt;
}

template <typename Value>
std::optional<Value> plainValueIn(std::optional<ReadableView<Value>> const& value) {
    auto const* const held = value ? std::get_if<Value>(&*value) : nullptr;
    return held != nullptr ? std::optional(*held) : std::nullopt;
}

/// An element that is left out says FALSE, unless it was not come to: others are after it.
std::optional<bool> simulationIn(GooseView const& view) {
    bool const isPassed = view.confRev || view.ndsCom || view.numDatSetEntries || view.allData;
    return view.simulation || !isPassed ? plainValueIn(view.simulation) : std::optional(false);
}

}  // namespace

bool GooseContentReader::isSame(Octets pdu) const {
    if (pdu.size() != pdu_.size()) {
        return false;
    }
    std::size_t const after = sqNum_ + sqNumSize_;
    return std::memcmp(pdu.data(), pdu_.data(), sqNum_) == 0 &&
           std::memcmp(pdu.data() + after, pdu_.data() + after, pdu_.size() - after) == 0;
}

void GooseContentReader::readAnew(CaptureWindow& window, std::uint32_t file,
                                  std::uint64_t fileOffset) {
    Octets const pdu = readGoosePdu(window, file, fileOffset);
    pdu_.assign(pdu.begin(), pdu.end());
    GooseView const view = viewGoose(pdu_, 0);
    if (!view.pdu) {
        throw std::system_error(ESTALE, std::generic_category());
    }
    content_ = {.timeAllowedtoLive = plainNumberIn(view.timeAllowedtoLive),
                .datSet = view.datSet,
                .confRev = plainNumberIn(view.confRev),
                .t = plainValueIn(view.t),
                .simulation = simulationIn(view),
                .ndsCom = plainValueIn(view.ndsCom),
                .numDatSetEntries = plainNumberIn(view.numDatSetEntries),
                .allData = view.allData ? std::optional(view.allData->octets()) : std::nullopt};
    sqNum_ = pdu_.size();
    sqNumSize_ = 0;
    for (auto element = view.pdu->members().begin(); element != std::default_sentinel; ++element) {
        if (element->tag == kSqNum) {
            sqNum_ = element->valueOffset;
            sqNumSize_ = element->octets.size();
            break;
        }
    }
}

}  // namespace TalIec61850Analysis::detail
