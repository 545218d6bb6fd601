#include "tools/output/JsonWriter.hpp"

#include "tools/selection/RowFields.hpp"

namespace TalIec61850Tools {

void writeJson(std::span<StreamRow const> rows, TextSink const& sink) {
    using Json = nlohmann::ordered_json;
    constexpr int onOneLine = -1;
    constexpr bool asAscii = true;
    for (StreamRow const& row : rows) {
        auto const line =
            toFields(row).dump(onOneLine, ' ', asAscii, Json::error_handler_t::replace);
        sink(line + "\n");
    }
}

}  // namespace TalIec61850Tools
