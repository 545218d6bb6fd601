#include <TalIec61850Analysis/packet/DataValue.hpp>

namespace TalIec61850Analysis {

namespace {

struct ContentCopy {
    template <typename Value>
    DataValue::Content operator()(Value const& value) const {
        return value;
    }
    DataValue::Content operator()(Octets octets) const { return toOwned(octets); }
    DataValue::Content operator()(BitStringView const& bits) const { return toOwned(bits); }
    DataValue::Content operator()(std::string_view text) const { return std::string(text); }
    DataValue::Content operator()(ObjectIdView const& id) const { return toOwned(id); }
    // NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than kMaxDataDepth
    DataValue::Content operator()(DataViews const& members) const { return toOwned(members); }
};

}  // namespace

// NOLINTNEXTLINE(misc-no-recursion)
DataValue toOwned(DataView const& view) {
    return {.offset = view.offset,
            .tag = view.tag,
            .kind = view.kind,
            .fault = view.fault,
            .value = std::visit(ContentCopy{}, view.value)};
}

// NOLINTNEXTLINE(misc-no-recursion)
std::vector<DataValue> toOwned(DataViews const& views) {
    std::vector<DataValue> values;
    for (DataView const& view : views) {
        values.push_back(toOwned(view));
    }
    return values;
}

}  // namespace TalIec61850Analysis
