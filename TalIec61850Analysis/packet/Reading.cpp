#include <TalIec61850Analysis/packet/Reading.hpp>
#include <limits>

namespace TalIec61850Analysis {

namespace {

std::optional<FaultKind> faultUnless(bool isRight) {
    return isRight ? std::nullopt : std::optional(FaultKind::wrongLength);
}

}  // namespace

Reading<std::string_view> readText(Octets octets) noexcept {
    return {{reinterpret_cast<char const*>(octets.data()), octets.size()}};
}

Reading<ReadableView<bool>> readBoolean(Octets octets) noexcept {
    if (octets.size() != 1) {
        return {octets, FaultKind::wrongLength};
    }
    return {octets.front() != 0};
}

Reading<ReadableView<UtcTime>> readTime(Octets octets) noexcept {
    if (auto const time = readUtcTime(octets)) {
        return {*time};
    }
    return {octets, FaultKind::wrongLength};
}

Reading<IntegerView> readSigned(Octets octets) noexcept {
    IntegerView const integer = readInteger(octets);
    if (!std::holds_alternative<Octets>(integer)) {
        return {integer};
    }
    return {integer, octets.empty() ? FaultKind::wrongLength : FaultKind::tooWide};
}

Reading<IntegerView> readCounter(Octets octets) noexcept {
    auto reading = readSigned(octets);
    if (octets.empty() || (octets.front() & 0x80U) == 0) {
        return reading;
    }
    reading.fault = FaultKind::negative;
    reading.value = octets;
    auto const number = readUnsigned(octets);
    if (auto const* const value = std::get_if<std::uint64_t>(&number)) {
        bool const hasSign = *value <= std::uint64_t{std::numeric_limits<std::int64_t>::max()};
        reading.value =
            hasSign ? IntegerView(static_cast<std::int64_t>(*value)) : IntegerView(*value);
    }
    return reading;
}

Reading<IntegerView> readPositive(Octets octets) noexcept {
    auto reading = readSigned(octets);
    if (isNegative(reading.value)) {
        reading.fault = FaultKind::negative;
    }
    return reading;
}

Reading<ReadableView<std::uint64_t>> readNumber(Octets octets, std::size_t width) noexcept {
    return {readUnsigned(octets), faultUnless(octets.size() == width)};
}

Reading<Octets> readOctets(Octets octets, std::size_t size) noexcept {
    return {octets, faultUnless(octets.size() == size)};
}

}  // namespace TalIec61850Analysis
