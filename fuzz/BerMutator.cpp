#include "fuzz/BerMutator.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "index/PlainDecode.hpp"
#include "support/Ber.hpp"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace TalFuzz {

using namespace TalTest;

namespace {

constexpr unsigned kMaxDepth = 24;
constexpr std::size_t kMaxSize = std::size_t{32} << 10U;

/// Identifiers that the walks and decoders know, and their neighbours.
constexpr std::array<std::uint8_t, 32> kTags = {
    0x30, 0x60, 0x61, 0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8A, 0x8B, 0x8C,
    0x90, 0x91, 0x9F, 0xA0, 0xA1, 0xA2, 0xA3, 0xAB, 0xAC, 0xBF, 0x62, 0x31, 0x00, 0x10, 0xC0, 0xFF};

constexpr std::array<LengthForm, 5> kForms = {LengthForm::twoOctets, LengthForm::threeOctets,
                                              LengthForm::fourOctets, LengthForm::indefinite,
                                              LengthForm::shortest};

/// The elements of a level as they stand, and what follows the last that can be read.
struct Level {
    std::vector<Bytes> elements;
    Bytes rest;
};

Bytes slice(Bytes const& octets, std::size_t begin, std::size_t end) {
    return {octets.begin() + static_cast<std::ptrdiff_t>(begin),
            octets.begin() + static_cast<std::ptrdiff_t>(end)};
}

/// Octets before the value of an element that was read.
std::size_t headerSize(Bytes const& element) {
    return 2 + (element[1] > 0x80 ? element[1] - 0x80U : 0U);
}

Level readLevel(Bytes const& octets) {
    Level level;
    std::size_t at = 0;
    for (PlainElement const& element : plainElements(octets)) {
        std::size_t const begin = at;
        at += headerSize(slice(octets, begin, begin + 2)) + element.value.size();
        level.elements.push_back(slice(octets, begin, at));
    }
    level.rest = slice(octets, at, octets.size());
    return level;
}

Bytes joined(Level const& level) {
    Bytes octets;
    for (Bytes const& element : level.elements) append(octets, element);
    append(octets, level.rest);
    return octets;
}

std::uint8_t anyTag(Random& random) { return kTags[random() % kTags.size()]; }

Bytes anyElement(Random& random) {
    Bytes value(random() % 10);
    for (std::uint8_t& octet : value) octet = static_cast<std::uint8_t>(random());
    return ber(anyTag(random), value);
}

/// One element in place of another; its value is what can be made of it.
Bytes mutatedElement(Bytes element, Random& random, unsigned depth) {
    std::uint8_t const tag = element[0];
    Bytes const value = slice(element, headerSize(element), element.size());
    switch (random() % 11) {
        case 0:
            element[0] = anyTag(random);
            return element;
        case 1:
            return ber(tag, value, kForms[random() % kForms.size()]);
        case 2:
            return berClaiming(tag, berLength(random() % (2 * value.size() + 2)), value);
        case 3:
            return ber(anyTag(random), element);
        case 4:
            return nested(anyTag(random), 1 + random() % 60, element);
        case 5:
            return nestedAmong(anyTag(random), 1 + random() % 30, element);
        case 6:
            return ber(tag, Bytes{});
        case 7:
            return ber(tag, mutatedOctets(value));
        default:
            return depth < kMaxDepth ? ber(tag, mutatedElements(value, random, depth + 1))
                                     : element;
    }
}

}  // namespace

Bytes mutatedOctets(Bytes octets) {
    std::size_t const size = octets.size();
    octets.resize(2 * size + 8);
    octets.resize(LLVMFuzzerMutate(octets.data(), size, octets.size()));
    return octets;
}

Bytes mutatedElements(Bytes const& octets, Random& random, unsigned depth) {
    Level level = readLevel(octets);
    auto& elements = level.elements;
    if (elements.empty()) {
        return random() % 2 == 0 ? mutatedOctets(octets) : concat({anyElement(random), octets});
    }
    std::size_t const chosen = random() % elements.size();
    auto const place = elements.begin() + static_cast<std::ptrdiff_t>(chosen);
    switch (random() % 10) {
        case 0:
            elements.insert(place, Bytes(*place));
            break;
        case 1:
            elements.erase(place);
            break;
        case 2:
            std::swap(*place, elements[random() % elements.size()]);
            break;
        case 3:
            elements.insert(place, anyElement(random));
            break;
        case 4:
            elements.insert(place, random() % 64, anyElement(random));
            break;
        default:
            *place = mutatedElement(*place, random, depth);
    }
    Bytes changed = joined(level);
    return changed.size() <= kMaxSize ? changed : octets;
}

}  // namespace TalFuzz
