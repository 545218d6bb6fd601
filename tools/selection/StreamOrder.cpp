#include "tools/selection/StreamOrder.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <string_view>

namespace TalIec61850Tools {

namespace {

using Row = StreamRow;

/// Orders by what `member` gives of a row; what is not set comes first.
template <auto member>
bool isLess(Row const& a, Row const& b) {
    return std::invoke(member, a) < std::invoke(member, b);
}

bool hasLesserName(Row const& a, Row const& b) {
    return (a.svID ? a.svID : a.gocbRef) < (b.svID ? b.svID : b.gocbRef);
}

struct Key {
    std::string_view name;
    bool (*isLess)(Row const& a, Row const& b);
};

constexpr std::array kKeys = {
    Key{"identity", nullptr},
    Key{"source", isLess<&Row::source>},
    Key{"destination", isLess<&Row::destination>},
    Key{"appid", isLess<&Row::appId>},
    Key{"name", hasLesserName},
    Key{"packets", isLess<&Row::packets>},
    Key{"rate", isLess<&Row::packetsPerSecond>},
    Key{"first", isLess<&Row::firstTime>},
    Key{"last", isLess<&Row::lastTime>},
};

}  // namespace

std::vector<std::string> streamOrderKeys() {
    std::vector<std::string> names;
    std::transform(kKeys.begin(), kKeys.end(), std::back_inserter(names),
                   [](Key const& key) { return std::string(key.name); });
    return names;
}

void sortRows(std::vector<StreamRow>& rows, StreamOrder const& order) {
    auto const* const key =
        std::find_if(kKeys.begin(), kKeys.end(), [&](Key const& k) { return k.name == order.key; });
    if (key != kKeys.end() && key->isLess != nullptr) {
        std::stable_sort(rows.begin(), rows.end(), [&](Row const& a, Row const& b) {
            return order.isReversed ? key->isLess(b, a) : key->isLess(a, b);
        });
    } else if (order.isReversed) {
        std::reverse(rows.begin(), rows.end());
    }
}

}  // namespace TalIec61850Tools
