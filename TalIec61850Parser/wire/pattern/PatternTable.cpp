#include <TalIec61850Parser/wire/pattern/PatternTable.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Parser::wire {

namespace {

constexpr std::size_t kMaxMaskBlocks = std::size_t{1} << 13U;
constexpr std::size_t kMaxHeldBlocks = std::size_t{1} << 17U;
/// Shapes in one list: a frame is hashed for each that has its key.
constexpr std::size_t kMaxListed = 8;
constexpr std::size_t kFirstSlotCount = 4;
/// Neighbouring slots in which a pattern may be.
constexpr std::size_t kMaxProbes = 16;

/// Spreads words over 64 bits. Each has a factor of its own, so that the products do not wait for
/// one another.
class WordHash {
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

/// Visits the slots in which something of this hash may be, one after the other.
/// @param slots  as many as a power of two
/// @return the first of them that `isIt` accepts; null when there is none
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

std::uint32_t PatternTable::find(Octets frame, std::uint8_t variety) const {
    ShapeKey const key = keyOf(frame, variety);
    for (std::uint32_t number = heads_[listOf(key)]; number != kNone;
         number = shapes_[number].next) {
        Shape const& shape = shapes_[number];
        if (shape.key != key) {
            continue;
        }
        WordHash hash;
        for (std::size_t i = 0; i < shape.hashedWordCount; ++i) {
            MaskedBlocks::MaskedWord const& word = shape.hashedWords[i].word;
            hash.add(MaskedBlocks::load<std::uint64_t>(frame.data() + word.index) & word.mask);
        }
        // No two patterns of a shape have one hash.
        Slot const* const slot = probe(shape.slots, hash.result(), [&](Slot const& each) {
            return each.pattern == kNone || each.hash == upperHalf(hash.result());
        });
        if (slot != nullptr && slot->pattern != kNone && matches(slot->pattern, frame, variety)) {
            return slot->pattern;
        }
    }
    return kNone;
}

std::uint32_t PatternTable::add(Octets frame, Octets mask, std::uint8_t variety) {
    if (frame.size() < MaskedBlocks::kBlockSize || frame.size() > kMaxFrameSize) {
        return kNone;
    }
    ShapeKey const key = keyOf(frame, variety);
    std::uint32_t const shapeNumber = findOrAddShape(key, mask);
    isFull_ = shapeNumber == kNone || patterns_.size() == kMaxPatterns ||
              blocks_.heldBlockCount() + shapes_[shapeNumber].mask.count > kMaxHeldBlocks;
    if (isFull_) {
        return kNone;
    }
    Shape& shape = shapes_[shapeNumber];
    auto const number = static_cast<std::uint32_t>(patterns_.size());
    Pattern const pattern{
        .key = key, .mask = shape.mask, .firstHeld = blocks_.hold(frame, shape.mask)};
    patterns_.push_back(pattern);
    if (!insert(shape, number)) {
        patterns_.pop_back();
        blocks_.releaseFrom(pattern.firstHeld);
        return kNone;
    }
    return number;
}

std::uint32_t PatternTable::findOrAddShape(ShapeKey key, Octets mask) {
    Shape shape;
    shape.key = key;
    shape.mask = blocks_.addMask(mask);
    std::uint32_t& head = heads_[listOf(key)];
    std::size_t listed = 0;
    for (std::uint32_t* link = &head; *link != kNone; link = &shapes_[*link].next) {
        Shape const& known = shapes_[*link];
        if (known.key == key && blocks_.areEqual(known.mask, shape.mask)) {
            blocks_.removeLast(shape.mask);
            return *link;
        }
        if (++listed == kMaxListed) {
            *link = kNone;  // the oldest makes room
            break;
        }
    }
    if (blocks_.maskBlockCount() > kMaxMaskBlocks) {
        blocks_.removeLast(shape.mask);
        return kNone;
    }
    shape.next = head;
    shape.slots.resize(kFirstSlotCount);
    head = static_cast<std::uint32_t>(shapes_.size());
    shapes_.push_back(std::move(shape));
    return head;
}

std::uint64_t PatternTable::hashOf(Shape const& shape, Pattern const& pattern) const {
    WordHash hash;
    for (std::size_t i = 0; i < shape.hashedWordCount; ++i) {
        hash.add(blocks_.heldWord(pattern.firstHeld, shape.hashedWords[i].number));
    }
    return hash.result();
}

/// @return false when the pattern cannot be told apart from another one, or finds no slot
bool PatternTable::insert(Shape& shape, std::uint32_t pattern) {
    if (2 * (shape.patternCount + 1) > shape.slots.size()) {
        rehash(shape, 2 * shape.slots.size());
    }
    for (;;) {
        std::uint64_t const hash = hashOf(shape, patterns_[pattern]);
        Slot* const slot = probe(shape.slots, hash, [&](Slot const& each) {
            return each.pattern == kNone || each.hash == upperHalf(hash);
        });
        if (slot == nullptr) {
            return false;
        }
        if (slot->pattern == kNone) {
            *slot = {.hash = upperHalf(hash), .pattern = pattern};
            ++shape.patternCount;
            return true;
        }
        if (!addHashedWord(shape, patterns_[pattern], patterns_[slot->pattern])) {
            return false;
        }
        rehash(shape, shape.slots.size());
    }
}

/// Adds a word in which two patterns of one hash differ.
/// @return false when there is none, or no room for it
bool PatternTable::addHashedWord(Shape& shape, Pattern const& a, Pattern const& b) const {
    if (shape.hashedWordCount == shape.hashedWords.size()) {
        return false;
    }
    auto const end = std::next(shape.hashedWords.begin(), shape.hashedWordCount);
    for (std::size_t number = 0; number < blocks_.wordCount(shape.mask); ++number) {
        auto const isHashed = [&](HashedWord const& each) { return each.number == number; };
        if (blocks_.heldWord(a.firstHeld, number) != blocks_.heldWord(b.firstHeld, number) &&
            std::none_of(shape.hashedWords.begin(), end, isHashed)) {
            *end = {.word = blocks_.wordOf(shape.mask, number),
                    .number = static_cast<std::uint32_t>(number)};
            ++shape.hashedWordCount;
            return true;
        }
    }
    return false;
}

/// A pattern that finds no slot any more is no longer found.
void PatternTable::rehash(Shape& shape, std::size_t slotCount) const {
    std::vector<Slot> slots(slotCount);
    shape.patternCount = 0;
    for (Slot const& old : shape.slots) {
        if (old.pattern == kNone) {
            continue;
        }
        std::uint64_t const hash = hashOf(shape, patterns_[old.pattern]);
        Slot* const free =
            probe(slots, hash, [](Slot const& each) { return each.pattern == kNone; });
        if (free != nullptr) {
            *free = {.hash = upperHalf(hash), .pattern = old.pattern};
            ++shape.patternCount;
        }
    }
    shape.slots = std::move(slots);
}

}  // namespace TalIec61850Parser::wire
