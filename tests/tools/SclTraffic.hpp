#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"

// What the tests of the group `scl` have in common: the description of a small station, and a
// capture of what it describes.

namespace TalTest {

/// The description: RELAY1 publishes gcb1 (APPID 1, VLAN 5, MaxTime 100 ms: a boolean, a structure
/// of four values, a number) and MU1 msvcb1 (svID MU01, APPID 4000, a current and its quality);
/// RELAY2 listens to a value of gcb1 and to msvcb1.
[[nodiscard]] std::string sclStationText();

/// A text in which the first occurrence of a part, which must be there, is another.
[[nodiscard]] std::string replaced(std::string text, std::string_view part, std::string_view by);

using ChangeGoose = std::function<void(std::size_t number, Ethernet&, GooseMessage&)>;
using ChangeSv = std::function<void(std::size_t number, Ethernet&, SvMessage&)>;

/// Ten messages of gcb1, one each 100 ms, and a second of msvcb1, as they are described, but for
/// what is done to them.
[[nodiscard]] Bytes sclStationCapture(ChangeGoose const& changeGoose = {},
                                      ChangeSv const& changeSv = {});

/// A description and a capture as files.
class SclFiles {
public:
    explicit SclFiles(std::string const& description = sclStationText(),
                      Bytes const& capture = sclStationCapture());

    [[nodiscard]] std::string const& scd() const { return scd_; }
    [[nodiscard]] std::string const& capture() const { return capture_; }
    [[nodiscard]] TempDir const& folder() const { return folder_; }
    /// The arguments of `scl check` for them.
    [[nodiscard]] Arguments check(Arguments const& more = {}) const;
    /// The rows of `scl check`, whatever they say.
    [[nodiscard]] std::vector<Json> checkRows(Arguments const& more = {}) const;

private:
    TempDir folder_;
    std::string scd_;
    std::string capture_;
};

}  // namespace TalTest
