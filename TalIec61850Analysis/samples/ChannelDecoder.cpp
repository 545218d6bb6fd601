#include <TalIec61850Analysis/samples/ChannelDecoder.hpp>
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

/// The first one in the upper half.
std::uint64_t twoWords(std::uint8_t const* octets) {
    std::uint64_t value = 0;
    std::memcpy(&value, octets, sizeof value);
    return __builtin_bswap64(value);
}

/// A number of some octets with its sign.
std::int64_t withSign(std::uint64_t value, std::size_t size) {
    if (size == 0 || size > sizeof value) {
        return 0;
    }
    std::uint64_t const sign = std::uint64_t{1} << (8 * size - 1);
    return static_cast<std::int64_t>((value ^ sign) - sign);
}

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
        plainEnd += 2 * sizeof(std::uint32_t);
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
    for (PlainChannel const& channel : plain_) {
        std::uint32_t const value = word(seqData);
        std::memcpy(channel.value + row * sizeof value, &value, sizeof value);
        channel.quality[row] = word(seqData + sizeof value);
        seqData += 2 * sizeof value;
    }
}

/// Channel by channel: where its columns are is looked up once for all rows.
void ChannelDecoder::decodePlainRows(std::span<std::uint8_t const* const> seqData,
                                     std::size_t row) const {
    std::uint8_t const* const* const octets = seqData.data();
    std::size_t const count = seqData.size();
    std::size_t offset = 0;
    for (PlainChannel const channel : plain_) {
        std::uint8_t* const values = channel.value + row * sizeof(std::uint32_t);
        std::uint32_t* const qualities = channel.quality + row;
        for (std::size_t i = 0; i < count; ++i) {
            std::uint64_t const both = twoWords(octets[i] + offset);
            auto const value = static_cast<std::uint32_t>(both >> 32U);
            std::memcpy(values + i * sizeof value, &value, sizeof value);
            qualities[i] = static_cast<std::uint32_t>(both);
        }
        offset += 2 * sizeof(std::uint32_t);
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
