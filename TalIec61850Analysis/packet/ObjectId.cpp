#include <TalIec61850Analysis/packet/ObjectId.hpp>
#include <limits>

namespace TalIec61850Analysis {

namespace {

constexpr std::uint8_t kMore = 0x80;

/// Reads a number and steps past it; nothing where there is none.
std::optional<std::uint64_t> readNumber(Octets& octets) noexcept {
    constexpr std::uint64_t kMaxBeforeShift = std::numeric_limits<std::uint64_t>::max() >> 7U;
    if (octets.empty() || octets.front() == kMore) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < octets.size() && number <= kMaxBeforeShift; ++i) {
        number = number << 7U | (octets[i] & 0x7FU);
        if ((octets[i] & kMore) == 0) {
            octets = octets.subspan(i + 1);
            return number;
        }
    }
    return std::nullopt;
}

}  // namespace

ObjectIdView::Iterator ObjectIdView::begin() const noexcept { return Iterator(octets_); }

ObjectIdView::Iterator::Iterator(Octets octets) noexcept : rest_(octets) {
    if (auto const number = readNumber(rest_)) {
        // The first arc is 0 to 2, and only below 2 is the second one less than 40.
        constexpr std::uint64_t kFactor = 40;
        arc_ = *number < 2 * kFactor ? *number / kFactor : 2;
        second_ = *number - kFactor * arc_;
        isEnd_ = false;
    }
}

ObjectIdView::Iterator& ObjectIdView::Iterator::operator++() noexcept {
    auto const next = second_ ? second_ : readNumber(rest_);
    second_.reset();
    isEnd_ = !next;
    arc_ = next.value_or(0);
    return *this;
}

std::optional<ObjectIdView> readObjectId(Octets octets) noexcept {
    Octets rest = octets;
    while (readNumber(rest)) {
    }
    return octets.empty() || !rest.empty() ? std::nullopt : std::optional(ObjectIdView(octets));
}

ObjectId toOwned(ObjectIdView const& id) {
    ObjectId owned;
    for (std::uint64_t const arc : id) {
        owned.arcs.push_back(arc);
    }
    return owned;
}

}  // namespace TalIec61850Analysis
