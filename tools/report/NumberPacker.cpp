#include "tools/report/NumberPacker.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "tools/report/BitWriter.hpp"
#include "tools/report/Predictor.hpp"

namespace TalIec61850Tools {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kBlock = 128;
constexpr unsigned kParameterBits = 5;
constexpr std::uint32_t kEscape = 24;
constexpr unsigned kMostLowBits = 31;

/// 0, -1, 1, -2, 2 become 0, 1, 2, 3, 4.
std::uint32_t foldSign(std::uint32_t difference) {
    return difference << 1U ^ (difference >> 31U == 0 ? 0 : ~std::uint32_t{0});
}

unsigned lowBitsFor(std::span<std::uint32_t const> block) {
    std::uint64_t sum = 0;
    for (std::uint32_t const code : block) {
        sum += code;
    }
    std::uint64_t const mean = sum / block.size();
    auto const bits = static_cast<unsigned>(std::bit_width(mean));
    return std::min(bits == 0 ? 0 : bits - 1, kMostLowBits);
}

void writeBlock(BitWriter& bits, std::span<std::uint32_t const> block) {
    unsigned const low = lowBitsFor(block);
    bits.write(low, kParameterBits);
    for (std::uint32_t const code : block) {
        std::uint32_t const high = code >> low;
        if (high >= kEscape) {
            bits.write((std::uint32_t{1} << kEscape) - 1, kEscape);
            bits.write(code, 32);
        } else {
            bits.write((std::uint32_t{2} << high) - 2, high + 1);
            bits.write(code, low);
        }
    }
}

Json packWords(std::string& octets, std::span<std::int32_t const> words, OtherChannels others,
               Predictor predictor) {
    std::size_t const at = octets.size();
    BitWriter bits(octets);
    std::vector<std::uint32_t> codes;
    for (std::size_t first = 0; first < words.size(); first += kBlock) {
        std::size_t const end = std::min(first + kBlock, words.size());
        codes.clear();
        for (std::size_t i = first; i < end; ++i) {
            codes.push_back(foldSign(static_cast<std::uint32_t>(words[i]) -
                                     static_cast<std::uint32_t>(predictor(words, others, i))));
        }
        writeBlock(bits, codes);
    }
    bits.finish();
    return {{"at", at},
            {"count", words.size()},
            {"shift", predictor.shift},
            {"factors", std::move(predictor.factors)},
            {"otherFactors", std::move(predictor.otherFactors)}};
}

bool isWord(double number) {
    return number >= INT32_MIN && number <= INT32_MAX && std::floor(number) == number;
}

bool isFloat(double number) {
    return std::isnan(number) || static_cast<double>(static_cast<float>(number)) == number;
}

std::vector<std::int32_t> toWords(std::span<double const> numbers) {
    std::vector<std::int32_t> words;
    words.reserve(numbers.size());
    for (double const number : numbers) {
        words.push_back(static_cast<std::int32_t>(number));
    }
    return words;
}

Json packFloats(std::string& octets, std::span<double const> numbers) {
    std::vector<std::int32_t> words;
    for (double const number : numbers) {
        words.push_back(std::bit_cast<std::int32_t>(static_cast<float>(number)));
    }
    Json list = Json::array();
    list.push_back(packWords(octets, words, {}, predictTheSame()));
    return {{"kind", "float32"}, {"words", std::move(list)}};
}

Json packDoubles(std::string& octets, std::span<double const> numbers) {
    std::vector<std::int32_t> lows;
    std::vector<std::int32_t> highs;
    for (double const number : numbers) {
        auto const bits = std::bit_cast<std::uint64_t>(number);
        lows.push_back(static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)));
        highs.push_back(static_cast<std::int32_t>(static_cast<std::uint32_t>(bits >> 32U)));
    }
    Json list = Json::array();
    list.push_back(packWords(octets, lows, {}, predictTheSame()));
    list.push_back(packWords(octets, highs, {}, predictTheSame()));
    return {{"kind", "float64"}, {"words", std::move(list)}};
}

}  // namespace

Json NumberPacker::pack(std::span<double const> numbers) {
    channels_.clear();
    return packChannel(numbers);
}

Json NumberPacker::packChannel(std::span<double const> numbers) {
    if (!std::all_of(numbers.begin(), numbers.end(), isWord)) {
        channels_.clear();
        bool const areFloats = std::all_of(numbers.begin(), numbers.end(), isFloat);
        return areFloats ? packFloats(octets_, numbers) : packDoubles(octets_, numbers);
    }
    if (!channels_.empty() && channels_.front().size() != numbers.size()) {
        channels_.clear();
    }
    std::vector<std::int32_t> words = toWords(numbers);
    std::vector<std::span<std::int32_t const>> const others(channels_.begin(), channels_.end());
    Json list = Json::array();
    list.push_back(packWords(octets_, words, others, fitPredictor(words, others)));
    channels_.push_front(std::move(words));
    if (channels_.size() > kMostOthers) {
        channels_.pop_back();
    }
    return {{"kind", "int32"}, {"words", std::move(list)}};
}

}  // namespace TalIec61850Tools
