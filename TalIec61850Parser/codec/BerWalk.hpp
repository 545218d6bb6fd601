#pragma once

// Internal: the walk over nested BER elements that GOOSE and SV share.

#include <TalIec61850Parser/codec/WalkTrace.hpp>
#include <TalIec61850Parser/wire/BerReader.hpp>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace TalIec61850Parser::detail {

using wire::BerElement;
using wire::Octets;
namespace ber = wire::ber;

/// What a handler wants done with the element that it was shown.
enum class WalkStep {
    next,      ///< go on with the element after it
    skip,      ///< the same, and nothing depends on what its value holds
    descend,   ///< walk its value one level deeper, unless that is empty, then go on
    endLevel,  ///< look at no further element of this level, go on above it
    reject,    ///< end the whole walk
};

/// The step of a handler that matched the element against a filter.
constexpr WalkStep nextIf(bool passed) { return passed ? WalkStep::next : WalkStep::reject; }

/// The state of one nesting level, which a handler may change.
struct WalkLevel {
    /// 1 for the octets of a PDU; wider than any nesting can reach.
    std::int64_t depth = 1;
    /// Whether elements here belong to an ASDU (SV); a level inherits it from the one above.
    bool inAsdu = false;

    friend bool operator==(WalkLevel const&, WalkLevel const&) = default;
};

/// The unfinished levels above the one being walked. They are kept in place up to the nesting that
/// real frames have, on the heap beyond it, and never on the call stack: the sender decides how
/// deep a frame nests.
class WalkStack {
public:
    struct Entry {
        WalkLevel level;
        std::size_t index = 0;
        std::size_t end = 0;
        std::uint32_t elementCount = 0;
    };

    [[nodiscard]] bool empty() const { return size_ == 0; }

    void push(Entry const& entry) {
        if (size_ < inline_.size()) {
            inline_[size_] = entry;
        } else {
            heap_.push_back(entry);
        }
        ++size_;
    }

    Entry pop() {
        --size_;
        if (size_ < inline_.size()) {
            return inline_[size_];
        }
        Entry const entry = heap_.back();
        heap_.pop_back();
        return entry;
    }

private:
    std::array<Entry, 8> inline_;
    std::vector<Entry> heap_;
    std::size_t size_ = 0;
};

/// Elements of one level that the frame walks look at; those after them are not.
inline constexpr std::uint32_t kMaxElementsPerLevel = 50;
inline constexpr std::uint32_t kUnlimited = std::numeric_limits<std::uint32_t>::max();

/// Longest run of octets after the PDU treated as a tail. Short enough that it cannot hold
/// kMaxElementsPerLevel elements.
inline constexpr std::size_t kMaxTailSize = std::size_t{2} * (kMaxElementsPerLevel - 1);

/// Tells a WalkTrace, if there is one, what a walk passes over.
class WalkTracer {
public:
    WalkTracer(WalkTrace* trace, Octets data) : trace_(trace), data_(data) {}

    /// The walk is about to read an element.
    void atElement(WalkLevel const& level, std::uint32_t elementCount, std::size_t index) {
        if (trace_ != nullptr && elementCount == 1 && level == WalkLevel{}) {
            tail_ = data_.subspan(index);
        }
    }
    void afterElement(WalkStep step, BerElement const& element, std::size_t index) {
        if (trace_ == nullptr) {
            return;
        }
        if (step == WalkStep::skip) {
            trace_->passOver(element.value);
        } else {
            tail_ = {};
        }
        if (step == WalkStep::reject) {
            trace_->passOver(data_.subspan(index));
        }
    }
    /// The octets of a level that the walk leaves unread.
    void atLevelEnd(std::size_t index, std::size_t end, bool isLast) {
        if (trace_ == nullptr) {
            return;
        }
        trace_->passOver(data_.subspan(index, end - index));
        if (isLast && tail_.size() <= kMaxTailSize) {
            trace_->endAt(tail_);
        }
    }

private:
    WalkTrace* trace_;
    Octets data_;
    // What follows the first element of the first level, as long as it is passed over.
    Octets tail_;
};

/// The level inside an element.
/// @param above     after the element
/// @param index  where the element's value starts
inline WalkStack::Entry levelBelow(WalkStack::Entry const& above, std::size_t index) {
    return {.level = {.depth = above.level.depth + 1, .inAsdu = above.level.inAsdu},
            .index = index,
            .end = above.index,
            .elementCount = 0};
}

/// Walks the elements of `data` depth first and shows each to the handler. An element that cannot
/// be read ends its level quietly, the levels above go on.
///
/// @param data     the octets of the first level
/// @param level    the state of the first level
/// @param handler  `WalkStep handler(BerElement const&, std::size_t index, WalkLevel&)`, where
///                 `index` is the index in `data` of the element's identifier octet
/// @param trace    told what was passed over, unless null; `data` is part of its frame
/// @return false only when the handler rejected
template <std::uint32_t maxElementsPerLevel = kMaxElementsPerLevel, typename Handler>
[[nodiscard]] bool walkElements(Octets data, WalkLevel level, Handler const& handler,
                                WalkTrace* trace = nullptr) {
    WalkTracer tracer(trace, data);
    WalkStack unfinished;
    WalkStack::Entry now{.level = level, .index = 0, .end = data.size(), .elementCount = 0};
    for (;;) {
        BerElement element;
        std::size_t const start = now.index;
        tracer.atElement(now.level, now.elementCount, start);
        bool const levelGoesOn = now.elementCount < maxElementsPerLevel &&
                                 wire::readElement(data.first(now.end), now.index, element);
        if (!levelGoesOn) {
            tracer.atLevelEnd(now.index, now.end, unfinished.empty());
            if (unfinished.empty()) {
                return true;
            }
            now = unfinished.pop();
            continue;
        }
        ++now.elementCount;
        WalkStep const step = handler(element, start, now.level);
        tracer.afterElement(step, element, now.index);
        switch (step) {
            case WalkStep::next:
            case WalkStep::skip:
                break;
            case WalkStep::endLevel:
                now.index = now.end;
                break;
            case WalkStep::reject:
                return false;
            case WalkStep::descend:
                if (element.value.empty()) {
                    break;
                }
                // A level with nothing left to read is not pushed, so a chain of single children
                // needs no memory.
                if (now.index < now.end && now.elementCount < maxElementsPerLevel) {
                    unfinished.push(now);
                }
                now = levelBelow(now, start + element.headerSize);
                break;
        }
    }
}

/// Whether a walk that came to these octets after a PDU would pass over all of them.
/// @param tail  at most `kMaxTailSize` octets
template <typename Handler>
[[nodiscard]] bool passesOverTail(Octets tail, Handler const& handler) {
    return walkElements(tail, {},
                        [&](BerElement const& element, std::size_t index, WalkLevel& level) {
                            return nextIf(handler(element, index, level) == WalkStep::skip);
                        });
}

}  // namespace TalIec61850Parser::detail
