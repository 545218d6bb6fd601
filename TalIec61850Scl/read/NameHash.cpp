#include <TalIec61850Scl/read/NameHash.hpp>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <exception>
#include <random>

namespace TalIec61850Scl::detail {

namespace {

// NOLINTNEXTLINE(modernize-use-using): a using cannot be marked as an extension
__extension__ typedef unsigned __int128 WideWord;

/// What no description can know.
struct HashKey {
    std::uint64_t start = 0;
    /// Odd.
    std::uint64_t multiplier = 1;
};

std::uint64_t drawKeyWord() {
    try {
        std::random_device device;
        return std::uint64_t{device()} << 32U | device();
    } catch (std::exception const&) {
        // Reading need not fail for want of it.
        auto const now = std::chrono::steady_clock::now().time_since_epoch();
        return std::mt19937_64(static_cast<std::uint64_t>(now.count()))();
    }
}

/// The same until the program ends.
HashKey const& hashKey() {
    static HashKey const drawn = {.start = drawKeyWord(), .multiplier = drawKeyWord() | 1U};
    return drawn;
}

}  // namespace

std::size_t NameHash::operator()(std::string_view name) const {
    HashKey const& key = hashKey();
    std::uint64_t sum = key.start;
    auto const add = [&](std::uint64_t word) {
        // Both halves of the product, so that each bit of the word counts for all of the sum.
        WideWord const product = WideWord{sum ^ word} * key.multiplier;
        sum = static_cast<std::uint64_t>(product >> 64U) ^ static_cast<std::uint64_t>(product);
    };
    add(name.size());
    for (std::size_t begin = 0; begin < name.size(); begin += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, name.data() + begin, std::min(sizeof word, name.size() - begin));
        add(word);
    }
    return sum;
}

}  // namespace TalIec61850Scl::detail
