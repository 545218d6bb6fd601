#include <TalIec61850Analysis/traffic/AttributeTable.hpp>
#include <TalIec61850Analysis/traffic/JoinedHash.hpp>
#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace TalIec61850Analysis::detail {

namespace {

std::uint64_t hashOf(std::optional<std::string> const& text) {
    return text ? std::hash<std::string_view>()(*text) : 1;
}

std::uint64_t hashOf(std::optional<Readable<std::uint64_t>> const& number) {
    auto const* const value = number ? std::get_if<std::uint64_t>(&*number) : nullptr;
    return value != nullptr ? *value : std::uint64_t{number.has_value()};
}

std::size_t hashOf(StreamAttributes const& attributes) {
    JoinedHash hash;
    hash.add(attributes.asdus);
    hash.add(hashOf(attributes.datSet));
    hash.add(hashOf(attributes.goID));
    hash.add(hashOf(attributes.confRev));
    hash.add(hashOf(attributes.smpRate));
    hash.add(hashOf(attributes.smpMod));
    hash.add(std::uint64_t{attributes.isCut} << 1U | std::uint64_t{attributes.simulatedBit});
    return hash.result();
}

}  // namespace

std::uint32_t AttributeTable::numberOf(StreamAttributes const& attributes) {
    std::size_t const hash = hashOf(attributes);
    auto const [first, last] = byHash_.equal_range(hash);
    auto const found = std::find_if(
        first, last, [&](auto const& entry) { return all_[entry.second] == attributes; });
    if (found != last) {
        return found->second;
    }
    auto const number = static_cast<std::uint32_t>(all_.size());
    all_.push_back(attributes);
    byHash_.emplace(hash, number);
    return number;
}

std::vector<StreamAttributes> AttributeTable::take() { return std::move(all_); }

}  // namespace TalIec61850Analysis::detail
