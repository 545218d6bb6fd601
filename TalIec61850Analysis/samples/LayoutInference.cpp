#include <TalIec61850Analysis/samples/LayoutInference.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>
#include <algorithm>
#include <bit>
#include <chrono>

namespace TalIec61850Analysis {

namespace {

constexpr std::size_t kWord = 4;
constexpr std::size_t kChannel = 8;
constexpr std::size_t kValueAndTime = 12;
/// One could be anything; with a few, chance is out.
constexpr std::size_t kFewestAsdus = 2;

std::uint32_t wordAt(Octets octets, std::size_t offset) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < kWord; ++i) {
        word = word << 8U | octets[offset + i];
    }
    return word;
}

std::vector<SampleType> repeated(std::initializer_list<SampleType> members, std::size_t times) {
    std::vector<SampleType> all;
    all.reserve(members.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        all.insert(all.end(), members);
    }
    return all;
}

}  // namespace

void LayoutInference::Words::add(std::uint32_t word) {
    constexpr std::uint32_t kUsedBits = 0x3FFF;
    constexpr float kSmallest = 1e-6F;
    constexpr float kLargest = 1e9F;
    areQualities = areQualities && (word & ~kUsedBits) == 0;
    if ((word & 0x7FFFFFFFU) == 0) {  // zero, of either sign
        return;
    }
    auto const magnitude = std::bit_cast<float>(word & 0x7FFFFFFFU);
    areFloats = areFloats && magnitude >= kSmallest && magnitude <= kLargest;
    auto const exponent = static_cast<std::uint8_t>(word >> 23U & 0xFFU);
    leastExponent = std::min(leastExponent, exponent);
    largestExponent = std::max(largestExponent, exponent);
}

LayoutInference::LayoutInference(std::size_t size) : size_(size) {}

void LayoutInference::add(Octets seqData, std::optional<CaptureTime> arrival) {
    if (seqData.size() != size_) {
        return;
    }
    ++asdus_;
    isZero_ = isZero_ && std::all_of(seqData.begin(), seqData.end(),
                                     [](std::uint8_t octet) { return octet == 0; });
    if (size_ % kWord == 0) {
        for (std::size_t offset = 0; offset < size_; offset += kWord) {
            (offset % kChannel == 0 ? first_ : second_).add(wordAt(seqData, offset));
        }
    }
    if (size_ % kValueAndTime == 0) {
        lookForTimes(seqData, arrival);
    }
}

void LayoutInference::lookForTimes(Octets seqData, std::optional<CaptureTime> arrival) {
    constexpr std::int64_t kHour = 3600;
    haveTimes_ = haveTimes_ && arrival.has_value();
    for (std::size_t offset = 0; haveTimes_ && offset < size_; offset += kValueAndTime) {
        values_.add(wordAt(seqData, offset));
        auto const time = readUtcTime(seqData.subspan(offset + kWord, kUtcTimeSize));
        auto const second = std::chrono::floor<std::chrono::seconds>(*arrival).time_since_epoch();
        std::int64_t const away = std::int64_t{time->seconds} - second.count();
        haveTimes_ = -kHour <= away && away <= kHour;
    }
}

FoundLayout LayoutInference::result() const {
    FoundLayout found{.layout = {}, .source = LayoutSource::none, .asdus = asdus_};
    if (size_ == 0 || asdus_ == 0) {
        return found;
    }
    bool const areChannels = size_ % kChannel == 0;
    bool const areWords = size_ % kWord == 0;
    found.isZero = isZero_;
    found.isIntegerAndQuality = areChannels && second_.areQualities;
    found.isFloatAndQuality = found.isIntegerAndQuality && first_.variesLikeFloats();
    found.isFloat = areWords && first_.areFloats && second_.areFloats &&
                    (first_.variesLikeFloats() || second_.variesLikeFloats());
    found.isValueAndTime = size_ % kValueAndTime == 0 && haveTimes_;

    bool const isDecided = !isZero_ && asdus_ >= kFewestAsdus;
    if (!isDecided) {
        found.source = LayoutSource::undecided;
        if (size_ == kSizeOf92Le && found.isIntegerAndQuality && !first_.mayBeFloats()) {
            found.layout =
                SampleLayout(repeated({SampleType::int32, SampleType::quality}, size_ / kChannel));
        }
        return found;
    }
    found.source = LayoutSource::inferred;
    if (found.isValueAndTime) {
        SampleType const value =
            values_.variesLikeFloats() ? SampleType::float32 : SampleType::int32;
        found.layout =
            SampleLayout(repeated({value, SampleType::timestamp}, size_ / kValueAndTime));
    } else if (found.isFloatAndQuality) {
        found.layout =
            SampleLayout(repeated({SampleType::float32, SampleType::quality}, size_ / kChannel));
    } else if (found.isIntegerAndQuality) {
        found.layout =
            SampleLayout(repeated({SampleType::int32, SampleType::quality}, size_ / kChannel));
    } else if (found.isFloat) {
        found.layout = SampleLayout(repeated({SampleType::float32}, size_ / kWord));
    } else {
        found.source = LayoutSource::none;
    }
    return found;
}

}  // namespace TalIec61850Analysis
