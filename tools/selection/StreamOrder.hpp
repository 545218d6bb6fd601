#pragma once

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace TalIec61850Tools {

/// In which order streams are listed.
struct StreamOrder {
    /// One of streamOrderKeys().
    std::string key = "identity";
    bool isReversed = false;
};

/// A thing that rows can be ordered by; what is not set comes first.
template <typename Row>
struct OrderKey {
    std::string_view name;
    /// Null for the order that rows come in.
    bool (*isLess)(Row const& a, Row const& b);
};

template <typename Row>
inline constexpr std::array<OrderKey<Row>, 9> kOrderKeys = {{
    {"identity", nullptr},
    {"source", [](Row const& a, Row const& b) { return a.source < b.source; }},
    {"destination", [](Row const& a, Row const& b) { return a.destination < b.destination; }},
    {"appid", [](Row const& a, Row const& b) { return a.appId < b.appId; }},
    {"name", [](Row const& a, Row const& b) { return a.name() < b.name(); }},
    {"packets", [](Row const& a, Row const& b) { return a.packets < b.packets; }},
    {"rate",
     [](Row const& a, Row const& b) { return a.packetsPerSecond() < b.packetsPerSecond(); }},
    {"first", [](Row const& a, Row const& b) { return a.firstTime < b.firstTime; }},
    {"last", [](Row const& a, Row const& b) { return a.lastTime < b.lastTime; }},
}};

/// What streams can be ordered by; the first is the order that they come in.
template <typename Row>
[[nodiscard]] std::vector<std::string> streamOrderKeys() {
    std::vector<std::string> names;
    std::transform(kOrderKeys<Row>.begin(), kOrderKeys<Row>.end(), std::back_inserter(names),
                   [](OrderKey<Row> const& key) { return std::string(key.name); });
    return names;
}

/// Orders the rows; those that are alike in the key stay as they are, also when reversed.
template <typename Row>
void sortRows(std::vector<Row>& rows, StreamOrder const& order) {
    auto const* const key =
        std::find_if(kOrderKeys<Row>.begin(), kOrderKeys<Row>.end(),
                     [&](OrderKey<Row> const& known) { return known.name == order.key; });
    if (key != kOrderKeys<Row>.end() && key->isLess != nullptr) {
        std::stable_sort(rows.begin(), rows.end(), [&](Row const& a, Row const& b) {
            return order.isReversed ? key->isLess(b, a) : key->isLess(a, b);
        });
    } else if (order.isReversed) {
        std::reverse(rows.begin(), rows.end());
    }
}

}  // namespace TalIec61850Tools
