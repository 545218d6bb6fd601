#include <TalIec61850Parser/capture/FrameMemory.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Parser::detail {

namespace {

constexpr std::size_t kWordSize = sizeof(std::uint64_t);
constexpr std::size_t kMaxUnits = std::size_t{1} << 13U;
constexpr std::size_t kMaxHeldUnits = std::size_t{1} << 17U;
/// Layouts in one list: a frame is hashed for each that has its form.
constexpr std::size_t kMaxListed = 8;
constexpr std::size_t kFirstSlotCount = 4;
/// Neighbouring slots in which a likeness may lie.
constexpr std::size_t kMaxProbes = 16;
/// Unknown frames after which a full memory starts afresh: several times as many as filled it.
constexpr std::size_t kPatience = 4 * FrameMemory::kMaxLikenesses;

/// Spreads key words over 64 bits. Each has a factor of its own, so that the products do not wait
/// for one another.
class KeyHash {
public:
    void add(std::uint64_t word) {
        sum_ += (word ^ word >> 32U) * factor_;
        factor_ += 2 * kGoldenRatio;
    }
    [[nodiscard]] std::uint64_t result() const { return sum_ ^ sum_ >> 29U; }

private:
    static constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15U;
    std::uint64_t factor_ = kGoldenRatio;
    std::uint64_t sum_ = 0;
};

/// What a slot keeps of a hash: the half that does not say where the slot is.
std::uint32_t upperHalf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32U); }

/// The slots in which something of this hash may lie, one after the other.
/// @param slots  as many as a power of two
/// @return the first of them that `isIt` says yes to; null when there is none
template <typename Slots, typename Predicate>
auto* probe(Slots& slots, std::uint64_t hash, Predicate const& isIt) {
    for (std::size_t i = 0; i < kMaxProbes; ++i) {
        auto& slot = slots[(hash + i) & (slots.size() - 1)];
        if (isIt(slot)) {
            return &slot;
        }
    }
    return static_cast<decltype(slots.data())>(nullptr);
}

}  // namespace

// --- Finding -----------------------------------------------------------------------------------

FrameConclusion* FrameMemory::find(Octets frame, std::uint8_t kind) {
    std::uint32_t const found = lookUp(frame, kind);
    if (found == kNone) {
        return nullptr;
    }
    noteTurn(found);
    return &likenesses_[found].conclusion;
}

std::uint32_t FrameMemory::lookUp(Octets frame, std::uint8_t kind) {
    Form const form = formOf(frame, kind);
    for (std::uint32_t index = headFor(form); index != kNone; index = layouts_[index].next) {
        Layout const& layout = layouts_[index];
        if (layout.form != form) {
            continue;
        }
        KeyHash hash;
        for (std::size_t i = 0; i < layout.keyCount; ++i) {
            KeyWord const& key = layout.keys[i];
            hash.add(load<std::uint64_t>(frame.data() + key.position) & key.mask);
        }
        // No two likenesses here have one hash.
        Slot const* const slot = probe(layout.slots, hash.result(), [&](Slot const& each) {
            return each.likeness == kNone || each.hash == upperHalf(hash.result());
        });
        if (slot != nullptr && slot->likeness != kNone &&
            agrees(frame.data(), likenesses_[slot->likeness])) {
            return slot->likeness;
        }
    }
    return kNone;
}

/// Learns in which order likenesses take turns. One that comes between two that keep their order
/// does not disturb it.
void FrameMemory::noteTurn(std::uint32_t found) {
    if (last_ == kNone) {
        last_ = found;
        return;
    }
    std::uint32_t& successor = likenesses_[last_].successor;
    trust_ = std::clamp(trust_ + (successor == found ? 1 : -1), -kMostTrust, kMostTrust);
    if (successor == kNone) {
        successor = found;
    }
    if (successor == found) {
        last_ = found;
        between_ = kNone;
    } else if (between_ == kNone) {
        between_ = found;
    } else {
        successor = between_;
        likenesses_[between_].successor = found;
        last_ = found;
        between_ = kNone;
    }
    expected_ = trust_ < 0 ? kNone : likenesses_[last_].successor;
}

// --- Remembering -------------------------------------------------------------------------------

bool FrameMemory::wantsMore() {
    if (isFull_ && ++unknownSinceFull_ > kPatience) {
        *this = FrameMemory();
    }
    return !isFull_;
}

FrameConclusion* FrameMemory::remember(Octets frame, Octets mask, std::uint8_t kind,
                                       FrameConclusion const& conclusion) {
    if (frame.size() < sizeof(Unit) || frame.size() > kMaxFrameSize) {
        return nullptr;
    }
    Form const form = formOf(frame, kind);
    std::uint32_t const layoutIndex = findOrAddLayout(form, mask);
    isFull_ = layoutIndex == kNone || likenesses_.size() == kMaxLikenesses ||
              held_.size() + layouts_[layoutIndex].units.count > kMaxHeldUnits;
    if (isFull_) {
        return nullptr;
    }
    Layout& layout = layouts_[layoutIndex];
    Likeness likeness;
    likeness.form = form;
    likeness.units = layout.units;
    likeness.firstHeld = static_cast<std::uint32_t>(held_.size());
    likeness.conclusion = conclusion;
    for (std::size_t i = 0; i < layout.units.count; ++i) {
        std::size_t const unit = layout.units.first + i;
        held_.push_back(load<Unit>(frame.data() + positions_[unit]) & masks_[unit]);
    }
    auto const index = static_cast<std::uint32_t>(likenesses_.size());
    likenesses_.push_back(likeness);
    if (!insert(layout, index)) {
        likenesses_.pop_back();
        held_.resize(likeness.firstHeld);
        return nullptr;
    }
    noteTurn(index);
    return &likenesses_.back().conclusion;
}

std::uint32_t FrameMemory::findOrAddLayout(Form form, Octets mask) {
    std::size_t const oldUnitCount = positions_.size();
    addUnits(mask);
    Layout layout;
    layout.form = form;
    layout.units = {.first = static_cast<std::uint16_t>(oldUnitCount),
                    .count = static_cast<std::uint16_t>(positions_.size() - oldUnitCount)};
    auto const forgetUnits = [&] {
        positions_.resize(oldUnitCount);
        masks_.resize(oldUnitCount);
    };

    std::uint32_t& head = headFor(form);
    std::size_t listed = 0;
    for (std::uint32_t* link = &head; *link != kNone; link = &layouts_[*link].next) {
        Layout const& known = layouts_[*link];
        if (known.form == form && haveSameUnits(known.units, layout.units)) {
            forgetUnits();
            return *link;
        }
        if (++listed == kMaxListed) {
            *link = kNone;  // the oldest makes room
            break;
        }
    }
    if (positions_.size() > kMaxUnits) {
        forgetUnits();
        return kNone;
    }
    layout.next = head;
    layout.slots.resize(kFirstSlotCount);
    head = static_cast<std::uint32_t>(layouts_.size());
    layouts_.push_back(std::move(layout));
    return head;
}

/// Covers all octets that count with units.
void FrameMemory::addUnits(Octets mask) {
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
}

bool FrameMemory::haveSameUnits(UnitRange a, UnitRange b) const {
    if (a.count != b.count) {
        return false;
    }
    Unit different{};
    for (std::size_t i = 0; i < a.count; ++i) {
        different |= masks_[a.first + i] ^ masks_[b.first + i];
        different[0] |= positions_[a.first + i] ^ positions_[b.first + i];
    }
    return (different[0] | different[1]) == 0;
}

std::uint64_t FrameMemory::heldWord(Likeness const& likeness, std::size_t index) const {
    return held_[likeness.firstHeld + index / kWordsPerUnit][index % kWordsPerUnit];
}

std::uint64_t FrameMemory::hashOf(Layout const& layout, Likeness const& likeness) const {
    KeyHash hash;
    for (std::size_t i = 0; i < layout.keyCount; ++i) {
        hash.add(heldWord(likeness, layout.keys[i].index));
    }
    return hash.result();
}

/// @return false when the likeness cannot be told apart from another one, or has no place
bool FrameMemory::insert(Layout& layout, std::uint32_t likeness) {
    if (2 * (layout.likenessCount + 1) > layout.slots.size()) {
        rehash(layout, 2 * layout.slots.size());
    }
    for (;;) {
        std::uint64_t const hash = hashOf(layout, likenesses_[likeness]);
        Slot* const slot = probe(layout.slots, hash, [&](Slot const& each) {
            return each.likeness == kNone || each.hash == upperHalf(hash);
        });
        if (slot == nullptr) {
            return false;
        }
        if (slot->likeness == kNone) {
            *slot = {.hash = upperHalf(hash), .likeness = likeness};
            ++layout.likenessCount;
            return true;
        }
        if (!addKey(layout, likeness, slot->likeness)) {
            return false;
        }
        rehash(layout, layout.slots.size());
    }
}

/// Adds a word in which two likenesses of one hash differ.
/// @return false when there is none, or no room for it
bool FrameMemory::addKey(Layout& layout, std::uint32_t likeness, std::uint32_t other) const {
    if (layout.keyCount == layout.keys.size()) {
        return false;
    }
    Likeness const& a = likenesses_[likeness];
    Likeness const& b = likenesses_[other];
    for (std::size_t index = 0; index < kWordsPerUnit * layout.units.count; ++index) {
        auto const isKey = [&](KeyWord const& key) { return key.index == index; };
        if (heldWord(a, index) == heldWord(b, index) ||
            std::any_of(layout.keys.begin(), std::next(layout.keys.begin(), layout.keyCount),
                        isKey)) {
            continue;
        }
        std::size_t const unit = layout.units.first + index / kWordsPerUnit;
        std::size_t const word = index % kWordsPerUnit;
        layout.keys[layout.keyCount++] = {
            .mask = masks_[unit][word],
            .position = static_cast<std::uint32_t>(positions_[unit] + word * kWordSize),
            .index = static_cast<std::uint32_t>(index)};
        return true;
    }
    return false;
}

/// A likeness that finds no place any more is no longer recognised.
void FrameMemory::rehash(Layout& layout, std::size_t slotCount) const {
    std::vector<Slot> slots(slotCount);
    layout.likenessCount = 0;
    for (Slot const& old : layout.slots) {
        if (old.likeness == kNone) {
            continue;
        }
        std::uint64_t const hash = hashOf(layout, likenesses_[old.likeness]);
        Slot* const free =
            probe(slots, hash, [](Slot const& each) { return each.likeness == kNone; });
        if (free != nullptr) {
            *free = {.hash = upperHalf(hash), .likeness = old.likeness};
            ++layout.likenessCount;
        }
    }
    layout.slots = std::move(slots);
}

}  // namespace TalIec61850Parser::detail
