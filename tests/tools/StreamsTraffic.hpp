#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "support/Bytes.hpp"
#include "support/SampledValues.hpp"

// What the tests of the streams command have in common: captures to run it on, and ways to read
// what it writes.

namespace TalTest {

/// A GOOSE frame of a stream that `gocbRef` alone tells from others.
[[nodiscard]] Bytes oneGoose(std::string const& gocbRef = "gcb1");

/// An SV frame of a stream that `svID` alone tells from others, and what is around it.
[[nodiscard]] Bytes oneSv(std::string const& svID = "MU01", Ethernet const& link = svEthernet());

/// Two packets of one GOOSE stream, three of one SV stream.
[[nodiscard]] Bytes smallCapture();

/// The lines of a text, each without its end; "" after the last one if that has none.
[[nodiscard]] std::vector<std::string> linesOf(std::string_view text);

/// A text of one JSON value on each line.
[[nodiscard]] std::vector<nlohmann::json> jsonOf(std::string_view text);

/// What `streams --format json` says of the files, which it must do without a complaint.
[[nodiscard]] std::vector<nlohmann::json> streamsOf(std::vector<std::string> const& files);

/// A complaint of the program, as it is on standard error.
[[nodiscard]] std::string complaint(std::string const& text);

}  // namespace TalTest
