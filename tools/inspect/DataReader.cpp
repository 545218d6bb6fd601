#include "tools/inspect/DataReader.hpp"

#include <utility>

#include "tools/inspect/DataContent.hpp"

namespace TalIec61850Tools {

namespace {

bool holdsValues(DataKind kind) { return kind == DataKind::array || kind == DataKind::structure; }

/// Calls itself for what is nested, to kMaxDataDepth.
class DataReader {
public:
    explicit DataReader(Faults& faults) : faults_(faults) {}

    // NOLINTNEXTLINE(misc-no-recursion)
    std::vector<DataValue> readLevel(Level level, std::size_t depth) {
        std::vector<DataValue> values;
        ElementReader reader(std::move(level));
        while (auto element = reader.next()) {
            values.push_back(readValue(std::move(*element), depth));
        }
        return values;
    }

private:
    // NOLINTNEXTLINE(misc-no-recursion)
    DataValue readValue(Element&& element, std::size_t depth) {
        DataValue value{.offset = element.offset,
                        .tag = element.tag ? *element.tag : element.value.octets.front(),
                        .kind = element.tag ? kindOf(*element.tag) : DataKind::unreadable,
                        .fault = {},
                        .value = {}};
        note(value, element.fault);
        if (holdsValues(value.kind)) {
            readMembers(std::move(element.value), depth, value);
        } else if (element.fault) {
            value.value = std::move(element.value.octets);
        } else {
            auto content = readContent(value.kind, std::move(element.value.octets));
            value.value = std::move(content.value);
            note(value, content.fault);
        }
        return value;
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    void readMembers(Level&& level, std::size_t depth, DataValue& value) {
        if (depth < kMaxDataDepth || level.octets.empty()) {
            value.value = readLevel(std::move(level), depth + 1);
            return;
        }
        note(value, FaultKind::tooDeep);
        value.value = std::move(level.octets);
    }

    void note(DataValue& value, std::optional<FaultKind> fault) {
        if (fault) {
            faults_.push_back({value.offset, *fault});
            value.fault = fault;
        }
    }

    Faults& faults_;
};

}  // namespace

std::vector<DataValue> readDataValues(Level level, Faults& faults) {
    return DataReader(faults).readLevel(std::move(level), 1);
}

}  // namespace TalIec61850Tools
