#include "tools/selection/SampleTypeNames.hpp"

#include <algorithm>
#include <array>

#include "tools/output/NearestWords.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::SampleType;

namespace {

struct TypeNames {
    SampleType type = SampleType::int32;
    std::string_view word;
    std::string_view text;
};

constexpr std::array<TypeNames, 15> kTypes = {{
    {SampleType::boolean, "boolean", "BOOLEAN"},
    {SampleType::int8, "int8", "INT8"},
    {SampleType::int16, "int16", "INT16"},
    {SampleType::int24, "int24", "INT24"},
    {SampleType::int32, "int32", "INT32"},
    {SampleType::int64, "int64", "INT64"},
    {SampleType::int8u, "int8u", "INT8U"},
    {SampleType::int16u, "int16u", "INT16U"},
    {SampleType::int24u, "int24u", "INT24U"},
    {SampleType::int32u, "int32u", "INT32U"},
    {SampleType::float32, "float32", "FLOAT32"},
    {SampleType::float64, "float64", "FLOAT64"},
    {SampleType::enumerated, "enum", "enumeration"},
    {SampleType::quality, "quality", "quality"},
    {SampleType::timestamp, "timestamp", "timestamp"},
}};

}  // namespace

std::string_view typeText(SampleType type) {
    return std::find_if(kTypes.begin(), kTypes.end(),
                        [&](TypeNames const& names) { return names.type == type; })
        ->text;
}

std::vector<std::string> typeWords() {
    std::vector<std::string> words;
    words.reserve(kTypes.size());
    for (TypeNames const& names : kTypes) {
        words.emplace_back(names.word);
    }
    return words;
}

std::optional<SampleType> typeOfWord(std::string_view word) {
    auto const* const known =
        std::find_if(kTypes.begin(), kTypes.end(),
                     [&](TypeNames const& names) { return isSameWord(names.word, word); });
    return known == kTypes.end() ? std::nullopt : std::optional(known->type);
}

}  // namespace TalIec61850Tools
