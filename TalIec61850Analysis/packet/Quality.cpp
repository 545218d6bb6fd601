#include <TalIec61850Analysis/packet/Quality.hpp>

namespace TalIec61850Analysis {

Quality qualityFromBits(std::uint32_t bits) noexcept {
    auto const isSet = [&](unsigned index) { return (bits >> index & 1U) != 0; };
    return {.validity = static_cast<Validity>(bits & 3U),
            .overflow = isSet(2),
            .outOfRange = isSet(3),
            .badReference = isSet(4),
            .oscillatory = isSet(5),
            .failure = isSet(6),
            .oldData = isSet(7),
            .inconsistent = isSet(8),
            .inaccurate = isSet(9),
            .source = isSet(10) ? Source::substituted : Source::process,
            .test = isSet(11),
            .operatorBlocked = isSet(12)};
}

std::optional<Quality> readQuality(BitStringView const& bits) noexcept {
    if (bits.size() != kQualityBits) {
        return std::nullopt;
    }
    // As a number, the bits of a bit-string run the other way, and so do the two of the validity.
    std::uint32_t word = (bits[0] ? 2U : 0U) + (bits[1] ? 1U : 0U);
    for (unsigned i = 2; i < kQualityBits; ++i) {
        word |= (bits[i] ? 1U : 0U) << i;
    }
    return qualityFromBits(word);
}

}  // namespace TalIec61850Analysis
