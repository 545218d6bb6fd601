#include <TalIec61850Analysis/samples/ChannelDecoder.hpp>
#include <TalIec61850Analysis/traffic/Vectors.hpp>
#include <bit>
#include <cstring>
#include <type_traits>

namespace TalIec61850Analysis::detail {

namespace {

std::uint64_t bigEndian(std::uint8_t const* octets, std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        value = value << 8U | octets[i];
    }
    return value;
}

std::uint32_t word(std::uint8_t const* octets) {
    std::uint32_t value = 0;
    std::memcpy(&value, octets, sizeof value);
    return __builtin_bswap32(value);
}

/// Of big-endian words. In two steps, which every x86-64 has as instructions.
FourWords swapped(FourWords words) {
    auto shorts = load<EightShorts>(&words);
    shorts = shorts << 8 | shorts >> 8;
    shorts = __builtin_shufflevector(shorts, shorts, 1, 0, 3, 2, 5, 4, 7, 6);
    return load<FourWords>(&shorts);
}

/// Value and quality of two channels that follow each other, of four samples.
struct TwoChannels {
    /// @param samples  where each is
    /// @param offset   of the first channel in each
    TwoChannels(std::uint8_t const* const* samples, std::size_t offset) {
        auto const a = load<FourWords>(samples[0] + offset);
        auto const b = load<FourWords>(samples[1] + offset);
        auto const c = load<FourWords>(samples[2] + offset);
        auto const d = load<FourWords>(samples[3] + offset);
        FourWords const firstOfTwo[2] = {__builtin_shufflevector(a, b, 0, 4, 1, 5),
                                         __builtin_shufflevector(c, d, 0, 4, 1, 5)};
        FourWords const secondOfTwo[2] = {__builtin_shufflevector(a, b, 2, 6, 3, 7),
                                          __builtin_shufflevector(c, d, 2, 6, 3, 7)};
        values[0] = swapped(__builtin_shufflevector(firstOfTwo[0], firstOfTwo[1], 0, 1, 4, 5));
        qualities[0] = swapped(__builtin_shufflevector(firstOfTwo[0], firstOfTwo[1], 2, 3, 6, 7));
        values[1] = swapped(__builtin_shufflevector(secondOfTwo[0], secondOfTwo[1], 0, 1, 4, 5));
        qualities[1] = swapped(__builtin_shufflevector(secondOfTwo[0], secondOfTwo[1], 2, 3, 6, 7));
    }

    FourWords values[2];
    FourWords qualities[2];
};

/// A number of some octets with its sign.
std::int64_t withSign(std::uint64_t value, std::size_t size) {
    if (size == 0 || size > sizeof value) {
        return 0;
    }
    std::uint64_t const sign = std::uint64_t{1} << (8 * size - 1);
    return static_cast<std::int64_t>((value ^ sign) - sign);
}

/// Octets of a plain channel: its value and its quality.
constexpr std::size_t kPlainSize = 2 * sizeof(std::uint32_t);

bool isPlain(SampleChannel const& channel) {
    bool const isWord = channel.type == SampleType::int32 || channel.type == SampleType::float32;
    return isWord && channel.qualityOffset == channel.offset + sizeof(std::uint32_t);
}

template <typename Value>
Value valueOf(SampleType type, std::uint8_t const* octets) {
    std::size_t const size = sizeOf(type);
    std::uint64_t const bits = bigEndian(octets, size);
    switch (type) {
        case SampleType::float32:
            return static_cast<Value>(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
        case SampleType::float64:
            return static_cast<Value>(std::bit_cast<double>(bits));
        case SampleType::boolean:
            return static_cast<Value>(bits != 0 ? 1 : 0);
        case SampleType::int8u:
        case SampleType::int16u:
        case SampleType::int24u:
        case SampleType::int32u:
            return static_cast<Value>(bits);
        default:
            return static_cast<Value>(withSign(bits, size));
    }
}

}  // namespace

ChannelValues noValues(ValueType type) {
    switch (type) {
        case ValueType::int64:
            return std::vector<std::int64_t>();
        case ValueType::float32:
            return std::vector<float>();
        case ValueType::float64:
            return std::vector<double>();
        case ValueType::int32:
            break;
    }
    return std::vector<std::int32_t>();
}

ChannelDecoder::ChannelDecoder(SampleLayout const& layout, std::vector<ChannelColumn>& columns,
                               std::size_t rows) {
    std::size_t plainEnd = 0;
    isPlain_ = true;
    for (std::size_t i = 0; i < layout.channels().size(); ++i) {
        SampleChannel const& channel = layout.channels()[i];
        isPlain_ = isPlain_ && isPlain(channel) && channel.offset == plainEnd;
        plainEnd += kPlainSize;
        ChannelColumn& column = columns[i];
        column.qualities.resize(channel.qualityOffset ? rows : 0);
        Target target{.channel = channel,
                      .values = nullptr,
                      .qualities = channel.qualityOffset ? column.qualities.data() : nullptr};
        std::visit(
            [&](auto& values) {
                values.resize(rows);
                target.values = values.data();
            },
            column.values);
        targets_.push_back(target);
        plain_.push_back(
            {.value = static_cast<std::uint8_t*>(target.values), .quality = target.qualities});
    }
}

void ChannelDecoder::decodePlain(std::uint8_t const* seqData, std::size_t row) const {
    decodePlainFrom(0, seqData, row);
}

/// Decodes the channels from one on.
void ChannelDecoder::decodePlainFrom(std::size_t first, std::uint8_t const* seqData,
                                     std::size_t row) const {
    std::uint8_t const* octets = seqData + first * kPlainSize;
    for (PlainChannel const& channel : std::span(plain_).subspan(first)) {
        std::uint32_t const value = word(octets);
        std::memcpy(channel.value + row * sizeof value, &value, sizeof value);
        channel.quality[row] = word(octets + sizeof value);
        octets += kPlainSize;
    }
}

/// Two channels by two, and of those four rows by four: where the columns are is looked up once for
/// all rows. What is left over is decoded row by row.
void ChannelDecoder::decodePlainRows(std::span<std::uint8_t const* const> seqData,
                                     std::size_t row) const {
    std::size_t const inFours = seqData.size() / 4 * 4;
    std::size_t const inTwos = plain_.size() / 2 * 2;
    for (std::size_t channel = 0; channel < inTwos; channel += 2) {
        PlainChannel const one = plain_[channel];
        PlainChannel const other = plain_[channel + 1];
        for (std::size_t i = 0; i < inFours; i += 4) {
            TwoChannels const decoded(seqData.data() + i, channel * kPlainSize);
            store(one.value + (row + i) * sizeof(std::uint32_t), decoded.values[0]);
            store(one.quality + row + i, decoded.qualities[0]);
            store(other.value + (row + i) * sizeof(std::uint32_t), decoded.values[1]);
            store(other.quality + row + i, decoded.qualities[1]);
        }
    }
    if (inTwos < plain_.size()) {
        for (std::size_t i = 0; i < inFours; ++i) {
            decodePlainFrom(inTwos, seqData[i], row + i);
        }
    }
    for (std::size_t i = inFours; i < seqData.size(); ++i) {
        decodePlain(seqData[i], row + i);
    }
}

void ChannelDecoder::decodeAny(std::uint8_t const* seqData, std::size_t row) const {
    for (Target const& target : targets_) {
        auto const write = [&]<typename Value>(Value* values) {
            values[row] = seqData == nullptr ? Value{}
                                             : valueOf<Value>(target.channel.type,
                                                              seqData + target.channel.offset);
        };
        switch (target.channel.valueType()) {
            case ValueType::int32:
                write(static_cast<std::int32_t*>(target.values));
                break;
            case ValueType::int64:
                write(static_cast<std::int64_t*>(target.values));
                break;
            case ValueType::float32:
                write(static_cast<float*>(target.values));
                break;
            case ValueType::float64:
                write(static_cast<double*>(target.values));
                break;
        }
        if (target.qualities != nullptr) {
            target.qualities[row] =
                seqData == nullptr ? 0 : word(seqData + *target.channel.qualityOffset);
        }
    }
}

}  // namespace TalIec61850Analysis::detail
