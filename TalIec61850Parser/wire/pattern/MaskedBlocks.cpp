#include <TalIec61850Parser/wire/pattern/MaskedBlocks.hpp>
#include <algorithm>

namespace TalIec61850Parser::wire {

MaskedBlocks::Mask MaskedBlocks::addMask(Octets mask) {
    std::size_t const first = masks_.size();
    for (std::size_t i = 0; i < mask.size();) {
        if (mask[i] == 0) {
            ++i;
            continue;
        }
        // The last block may overlap the one before it: it must not reach past the frame.
        std::size_t const index = std::min(i, mask.size() - kBlockSize);
        indices_.push_back(static_cast<std::uint32_t>(index));
        masks_.push_back(load<Block>(mask.data() + index));
        i = index + kBlockSize;
    }
    return {.first = static_cast<std::uint16_t>(first),
            .count = static_cast<std::uint16_t>(masks_.size() - first)};
}

void MaskedBlocks::removeLast(Mask mask) {
    indices_.resize(mask.first);
    masks_.resize(mask.first);
}

bool MaskedBlocks::areEqual(Mask a, Mask b) const {
    if (a.count != b.count) {
        return false;
    }
    Block different{};
    for (std::size_t i = 0; i < a.count; ++i) {
        different |= masks_[a.first + i] ^ masks_[b.first + i];
        different[0] |= indices_[a.first + i] ^ indices_[b.first + i];
    }
    return (different[0] | different[1]) == 0;
}

std::uint32_t MaskedBlocks::hold(Octets frame, Mask mask) {
    auto const firstHeld = static_cast<std::uint32_t>(held_.size());
    for (std::size_t i = mask.first; i < std::size_t{mask.first} + mask.count; ++i) {
        held_.push_back(load<Block>(frame.data() + indices_[i]) & masks_[i]);
    }
    return firstHeld;
}

MaskedBlocks::MaskedWord MaskedBlocks::wordOf(Mask mask, std::size_t number) const {
    std::size_t const block = mask.first + number / kWordsPerBlock;
    std::size_t const word = number % kWordsPerBlock;
    return {.mask = masks_[block][word],
            .index = static_cast<std::uint32_t>(indices_[block] + word * kWordSize)};
}

}  // namespace TalIec61850Parser::wire
