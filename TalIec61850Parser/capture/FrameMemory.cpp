#include <TalIec61850Parser/capture/FrameMemory.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Parser::detail {

namespace {

constexpr std::size_t kWordSize = sizeof(std::uint64_t);
constexpr std::size_t kMaxUnits = std::size_t{1} << 14U;
constexpr std::size_t kMaxHeldUnits = std::size_t{1} << 18U;
/// Layouts in one list: each costs a frame of that size one hash.
constexpr std::size_t kMaxListed = 8;
constexpr std::size_t kFirstSlotCount = 4;
/// Unknown frames after which a full memory starts afresh: several times as many as filled it.
constexpr std::size_t kPatience = 4 * FrameMemory::kMaxLikenesses;

/// Spreads what key words hold over 64 bits. Each word has a factor of its own, so that the
/// products do not wait for one another.
class KeyHash {
public:
    void add(std::uint64_t word) {
        sum_ += (word ^ word >> 32U) * factor_;
        factor_ += 2 * kGoldenRatio;
    }
    [[nodiscard]] std::uint32_t high() const { return static_cast<std::uint32_t>(result() >> 32U); }
    [[nodiscard]] std::uint64_t result() const { return sum_ ^ sum_ >> 29U; }

private:
    static constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15U;
    std::uint64_t factor_ = kGoldenRatio;
    std::uint64_t sum_ = 0;
};

}  // namespace

std::uint32_t FrameMemory::lookUp(Octets frame, std::uint8_t kind) const {
    for (auto index = heads_[headOf(frame.size(), kind)]; index != kNone;) {
        Layout const& layout = layouts_[index];
        index = layout.next;
        if (layout.size != frame.size() || layout.kind != kind) {
            continue;
        }
        KeyHash hash;
        for (std::size_t i = 0; i < layout.keyCount; ++i) {
            KeyWord const& key = layout.keys[i];
            hash.add(load<std::uint64_t>(frame.data() + key.position) & key.mask);
        }
        for (std::size_t probe = 0; probe < kMaxProbes; ++probe) {
            Slot const& slot = layout.slots[(hash.result() + probe) & (layout.slots.size() - 1)];
            if (slot.likeness == kNone) {
                break;
            }
            if (slot.hash == hash.high()) {
                __builtin_prefetch(&likenesses_[slot.likeness]);
                if (agrees(frame.data(), layout.firstUnit, layout.unitCount, slot.firstHeld)) {
                    return slot.likeness;
                }
                break;
            }
        }
    }
    return kNone;
}

FrameConclusion* FrameMemory::find(Octets frame, std::uint8_t kind) {
    std::uint32_t const found = lookUp(frame, kind);
    if (last_ != kNone) {
        bool const wasExpected = likenesses_[last_].successor == found;
        trust_ = std::clamp(trust_ + (wasExpected ? 1 : -1), -kMostTrust, kMostTrust);
        likenesses_[last_].successor = found;
    }
    last_ = found;
    expected_ = found == kNone || trust_ < 0 ? kNone : likenesses_[found].successor;
    return found == kNone ? nullptr : &likenesses_[found].conclusion;
}

bool FrameMemory::wantsMore() {
    if (isFull_ && ++unknownSinceFull_ > kPatience) {
        *this = FrameMemory();
    }
    return !isFull_;
}

void FrameMemory::remember(Octets frame, Octets mask, std::uint8_t kind,
                           FrameConclusion const& conclusion) {
    if (frame.size() < sizeof(Unit) || frame.size() > kMaxFrameSize) {
        return;
    }
    std::uint32_t const index = findOrAddLayout(mask, kind);
    isFull_ = index == kNone || likenesses_.size() == kMaxLikenesses ||
              held_.size() + layouts_[index].unitCount > kMaxHeldUnits;
    if (isFull_) {
        return;
    }
    Layout& layout = layouts_[index];
    Likeness likeness;
    likeness.form = formOf(frame, kind);
    likeness.firstUnit = layout.firstUnit;
    likeness.unitCount = layout.unitCount;
    likeness.firstHeld = static_cast<std::uint32_t>(held_.size());
    likeness.conclusion = conclusion;
    for (std::size_t unit = layout.firstUnit; unit < layout.firstUnit + layout.unitCount; ++unit) {
        held_.push_back(load<Unit>(frame.data() + positions_[unit]) & masks_[unit]);
    }
    likenesses_.push_back(likeness);
    if (!insert(layout, static_cast<std::uint32_t>(likenesses_.size() - 1))) {
        held_.resize(likeness.firstHeld);
        likenesses_.pop_back();
    }
}

std::uint32_t FrameMemory::findOrAddLayout(Octets mask, std::uint8_t kind) {
    Layout layout;
    layout.size = static_cast<std::uint16_t>(mask.size());
    layout.kind = kind;
    layout.firstUnit = static_cast<std::uint16_t>(positions_.size());
    for (std::size_t i = 0; i < mask.size();) {
        if (mask[i] == 0) {
            ++i;
            continue;
        }
        std::size_t const position = std::min(i, mask.size() - sizeof(Unit));
        positions_.push_back(static_cast<std::uint32_t>(position));
        masks_.push_back(load<Unit>(mask.data() + position));
        i = position + sizeof(Unit);
    }
    layout.unitCount = static_cast<std::uint16_t>(positions_.size() - layout.firstUnit);
    std::uint32_t& head = heads_[headOf(layout.size, kind)];
    std::size_t listed = 0;
    auto const same = [&](Layout const& other) {
        if (other.size != layout.size || other.kind != layout.kind ||
            other.unitCount != layout.unitCount)
            return false;
        for (std::size_t i = 0; i < layout.unitCount; ++i) {
            Unit const x = masks_[layout.firstUnit + i] ^ masks_[other.firstUnit + i];
            if (positions_[layout.firstUnit + i] != positions_[other.firstUnit + i] ||
                (x[0] | x[1]) != 0)
                return false;
        }
        return true;
    };
    for (std::uint32_t* link = &head; *link != kNone; link = &layouts_[*link].next) {
        if (same(layouts_[*link])) {
            positions_.resize(layout.firstUnit);
            masks_.resize(layout.firstUnit);
            return *link;
        }
        if (++listed == kMaxListed) {
            *link = kNone;  // the oldest makes room
            break;
        }
    }
    if (positions_.size() > kMaxUnits) {
        return kNone;
    }
    layout.next = head;
    layout.slots.resize(kFirstSlotCount);
    head = static_cast<std::uint32_t>(layouts_.size());
    layouts_.push_back(std::move(layout));
    return head;
}

std::uint64_t FrameMemory::hashOfHeld(Layout const& layout, Likeness const& likeness) const {
    KeyHash hash;
    for (std::size_t i = 0; i < layout.keyCount; ++i) {
        std::size_t const index = layout.keys[i].index;
        hash.add(held_[likeness.firstHeld + index / 2][index % 2]);
    }
    return hash.result();
}

bool FrameMemory::insert(Layout& layout, std::uint32_t likeness) {
    if (2 * (layout.likenessCount + std::size_t{1}) > layout.slots.size()) {
        rehash(layout, 2 * layout.slots.size());
    }
    for (;;) {
        std::uint64_t const hash = hashOfHeld(layout, likenesses_[likeness]);
        bool again = false;
        for (std::size_t probe = 0; probe < kMaxProbes; ++probe) {
            Slot& place = layout.slots[(hash + probe) & (layout.slots.size() - 1)];
            if (place.likeness == kNone) {
                place = {static_cast<std::uint32_t>(hash >> 32), likeness,
                         likenesses_[likeness].firstHeld};
                ++layout.likenessCount;
                return true;
            }
            if (place.hash == static_cast<std::uint32_t>(hash >> 32)) {
                if (!addKey(layout, likenesses_[place.likeness], likenesses_[likeness]))
                    return false;
                rehash(layout, layout.slots.size());
                again = true;
                break;
            }
        }
        if (!again) return false;
    }
}

bool FrameMemory::addKey(Layout& layout, Likeness const& a, Likeness const& b) const {
    if (layout.keyCount == layout.keys.size()) {
        return false;
    }
    for (std::size_t index = 0; index < 2 * std::size_t{layout.unitCount}; ++index) {
        bool const differs =
            held_[a.firstHeld + index / 2][index % 2] != held_[b.firstHeld + index / 2][index % 2];
        auto const* const behind = layout.keys.data() + layout.keyCount;
        if (differs && std::none_of(std::as_const(layout.keys).data(), behind,
                                    [&](KeyWord const& key) { return key.index == index; })) {
            auto const unit = layout.firstUnit + index / 2;
            layout.keys[layout.keyCount++] = {.mask = masks_[unit][index % 2],
                                              .position = positions_[unit] + index % 2 * kWordSize,
                                              .index = index};
            return true;
        }
    }
    return false;
}

void FrameMemory::rehash(Layout& layout, std::size_t slotCount) const {
    std::vector<Slot> slots(slotCount);
    layout.likenessCount = 0;
    for (Slot slot : layout.slots) {
        if (slot.likeness == kNone) {
            continue;
        }
        auto const hash = hashOfHeld(layout, likenesses_[slot.likeness]);
        slot.hash = static_cast<std::uint32_t>(hash >> 32U);
        std::size_t probe = 0;
        while (probe < kMaxProbes && slots[(hash + probe) & (slotCount - 1)].likeness != kNone) {
            ++probe;
        }
        if (probe == kMaxProbes) {
            continue;
        }
        ++layout.likenessCount;
        slots[(hash + probe) & (slotCount - 1)] = slot;
    }
    layout.slots = std::move(slots);
}

}  // namespace TalIec61850Parser::detail
