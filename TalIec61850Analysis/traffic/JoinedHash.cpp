#include <TalIec61850Analysis/traffic/JoinedHash.hpp>
#include <algorithm>
#include <chrono>
#include <cstring>
#include <exception>
#include <random>

namespace TalIec61850Analysis::detail {

namespace {

/// A number that no capture can know.
std::uint64_t drawWord() {
    try {
        std::random_device device;
        return std::uint64_t{device()} << 32U | device();
    } catch (std::exception const&) {
        // Indexing need not fail for want of it.
        auto const now = std::chrono::steady_clock::now().time_since_epoch();
        return std::mt19937_64(static_cast<std::uint64_t>(now.count()))();
    }
}

}  // namespace

JoinedHash::Secret const& JoinedHash::secret() {
    static Secret const drawn = {.start = drawWord(), .multiplier = drawWord() | 1U};
    return drawn;
}

void JoinedHash::add(Octets octets) {
    add(octets.size());
    for (std::size_t begin = 0; begin < octets.size(); begin += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, octets.data() + begin, std::min(sizeof word, octets.size() - begin));
        add(word);
    }
}

void JoinedHash::add(std::string_view text) {
    add(Octets(reinterpret_cast<std::uint8_t const*>(text.data()), text.size()));
}

}  // namespace TalIec61850Analysis::detail
