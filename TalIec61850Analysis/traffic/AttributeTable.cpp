#include <TalIec61850Analysis/traffic/AttributeTable.hpp>
#include <TalIec61850Analysis/traffic/JoinedHash.hpp>
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace TalIec61850Analysis::detail {

namespace {

void add(JoinedHash& hash, std::optional<std::string> const& text) {
    hash.add(std::uint64_t{text.has_value()});
    if (text) {
        hash.add(std::string_view(*text));
    }
}

template <typename Value>
void add(JoinedHash& hash, std::optional<Readable<Value>> const& attribute) {
    hash.add(attribute ? 1 + attribute->index() : std::uint64_t{0});
    if (!attribute) {
        return;
    }
    if (auto const* const octets = std::get_if<OctetString>(&*attribute)) {
        hash.add(Octets(*octets));
    } else {
        hash.add(std::uint64_t{std::get<Value>(*attribute)});
    }
}

}  // namespace

std::size_t hashOf(StreamAttributes const& attributes) {
    JoinedHash hash;
    hash.add(std::uint64_t{attributes.asdus} << 2U | std::uint64_t{attributes.isCut} << 1U |
             std::uint64_t{attributes.simulatedBit});
    add(hash, attributes.datSet);
    add(hash, attributes.confRev);
    add(hash, attributes.goID);
    add(hash, attributes.simulation);
    add(hash, attributes.ndsCom);
    add(hash, attributes.smpRate);
    add(hash, attributes.smpMod);
    return hash.result();
}

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
