#pragma once

// A description of one GOOSE and one SV control block, written out by hand, and captures of what
// these send: as described, but for what a test changes.

#include <TalIec61850Analysis/TalIec61850Analysis.hpp>
#include <TalIec61850Scl/TalIec61850Scl.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "support/Bytes.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest {

using SclLines = std::vector<std::string>;

/// When the captures begin, in seconds since 1970; a message of GOOSE each 100 ms, a sample each
/// 250 us.
inline constexpr std::uint32_t kDescribedStart = 1'700'000'000;
inline constexpr std::int64_t kDescribedInterval = 100'000'000;
inline constexpr std::int64_t kDescribedSampleInterval = 250'000;

/// One frame of a capture.
struct DescribedFrame {
    /// In nanoseconds after kDescribedStart.
    std::int64_t time = 0;
    Bytes octets = {};
    /// Octets that are captured; 0 for all.
    std::size_t snappedTo = 0;
};

/// A member of a data set.
[[nodiscard]] TalIec61850Scl::DataSetMember memberOf(std::vector<std::uint32_t> path,
                                                     TalIec61850Scl::BasicType type,
                                                     std::string name = {});

/// Names are those of TalTest::GooseMessage; MAC 01:0c:cd:01:00:01, APPID 1, VLAN 5, priority 4,
/// MaxTime 100 ms. Values: BOOLEAN, Quality, a structure of INT32, Dbpos and Timestamp, FLOAT32.
[[nodiscard]] TalIec61850Scl::StationDescription describedGoose();
/// svID MU01; MAC 01:0c:cd:04:00:01, APPID 4000, VLAN 5, priority 4, 80 samples of a period, one
/// ASDU of four pairs of INT32 and Quality, no optional field but smpSynch.
[[nodiscard]] TalIec61850Scl::StationDescription describedSv();

/// What changes a message of a number.
using GooseChange = std::function<void(std::size_t number, Ethernet&, GooseMessage&)>;
/// What changes a frame of a number, of one ASDU.
using SvChange = std::function<void(std::size_t number, Ethernet&, SvMessage&)>;

/// Messages as described.
[[nodiscard]] std::vector<DescribedFrame> gooseFrames(std::size_t count,
                                                      GooseChange const& change = {});
/// Samples as described.
[[nodiscard]] std::vector<DescribedFrame> svFrames(std::size_t count, SvChange const& change = {});
/// The values of describedGoose().
[[nodiscard]] std::vector<Bytes> describedValues();

/// Captures of frames in the order of their times, indexed, and checked.
class CheckedStation {
public:
    /// @param files  the frames of each
    explicit CheckedStation(TalIec61850Scl::StationDescription station,
                            std::vector<std::vector<DescribedFrame>> const& files,
                            TalIec61850Scl::StationCheckOptions const& options = {});

    [[nodiscard]] TalIec61850Analysis::TrafficIndex const& index() const { return index_; }
    [[nodiscard]] std::vector<TalIec61850Scl::StationRow> const& rows() const { return rows_; }
    /// The rows: "match RELAY1LD0/LLN0$GO$gcb1", "differs ... by address: appId 1 != 2 @0.0",
    /// "unexpected MU02". What is after @ is the packet, its part first.
    [[nodiscard]] SclLines lines() const;

private:
    TalIec61850Scl::StationDescription station_;
    TalIec61850Analysis::TrafficIndex index_;
    std::vector<TalIec61850Scl::StationRow> rows_;
};

/// The octets of a capture of frames, in the order of their times.
[[nodiscard]] Bytes captureOf(std::vector<DescribedFrame> frames);

/// The lines of a station whose only capture is these.
[[nodiscard]] SclLines checkLines(TalIec61850Scl::StationDescription const& station,
                                  std::vector<DescribedFrame> const& frames);

/// Both lists of frames.
[[nodiscard]] std::vector<DescribedFrame> together(std::vector<DescribedFrame> frames,
                                                   std::vector<DescribedFrame> const& more);

/// Both descriptions as one.
[[nodiscard]] TalIec61850Scl::StationDescription together(
    TalIec61850Scl::StationDescription station, TalIec61850Scl::StationDescription const& more);

}  // namespace TalTest
