#include "tools/StreamsTraffic.hpp"

#include <gtest/gtest.h>

#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "tools/CompanionProcess.hpp"

namespace TalTest {

Bytes oneGoose(std::string const& gocbRef) {
    GooseMessage message;
    message.gocbRef = gocbRef;
    return gooseFrame(Ethernet().from("00:30:a7:00:00:01").to("01:0c:cd:01:00:01"), message);
}

Bytes oneSv(std::string const& svID, Ethernet const& link) {
    return svFrame(link, message92le(svID, 0));
}

Bytes smallCapture() {
    return CaptureBuilder(CaptureVariant::nanoLittle)
        .add(1700000000, 1, oneSv())
        .add(1700000000, 123456789, oneGoose())
        .add(1700000001, 1, oneSv())
        .add(1700000002, 1, oneSv())
        .add(1700000002, 123456789, oneGoose())
        .bytes();
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        auto const end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            lines.emplace_back();
            break;
        }
        text.remove_prefix(end + 1);
    }
    return lines;
}

std::vector<nlohmann::json> jsonOf(std::string_view text) {
    std::vector<nlohmann::json> values;
    for (auto const& line : linesOf(text)) {
        values.push_back(nlohmann::json::parse(line));
    }
    return values;
}

std::vector<nlohmann::json> streamsOf(std::vector<std::string> const& files) {
    std::vector<std::string> arguments = {"streams", "--format", "json", "-q"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    auto const result = runCompanion(arguments);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
    return jsonOf(result.out);
}

std::string complaint(std::string const& text) { return "tal-iec61850: " + text + "\n"; }

}  // namespace TalTest
