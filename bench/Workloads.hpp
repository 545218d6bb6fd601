#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/Traffic.hpp"
#include "support/CaptureFile.hpp"

namespace TalBench {

/// Traffic that is written to a capture file and indexed.
struct Workload {
    std::string name;
    std::uint64_t frames = 0;
    /// Begins the traffic; what it sends does not depend on `frames`.
    std::function<std::unique_ptr<Traffic>()> traffic;
    TalTest::CaptureVariant variant = TalTest::CaptureVariant::microLittle;
    /// What the index is to hold.
    TalIec61850Parser::Filter filter = {};
};

/// All that there are:
///
/// | name           | frames    |                                                                 |
/// |----------------|-----------|-----------------------------------------------------------------|
/// | sv16           | 4,000,000 | SV, 16 streams, one ASDU, in turns                              |
/// | goose64        | 2,000,000 | GOOSE, 64 streams, 16 data set entries, in turns                |
/// | sv8asdu        | 1,000,000 | SV, 16 streams, eight ASDUs, in turns                           |
/// | mix1000        | 2,000,000 | 800 streams of SV over both PRP LANs, 200 of GOOSE, by lot      |
/// | other70        | 2,000,000 | 30% from 8 SV and 4 GOOSE streams, among TCP, ARP and PTP       |
/// | filter20       | 2,000,000 | SV, 200 streams, of which the filter's 20 entries keep 20       |
/// | big-endian     | 2,000,000 | sv16's frames in a file whose fields are big-endian             |
/// | nanosecond     | 2,000,000 | sv16's frames in a file that counts nanoseconds                 |
/// | hostile-shapes | 1,000,000 | SV, 100,000 streams by lot, told apart by svID alone            |
/// | streams-N      | 2,000,000 | SV, N streams of 1, 10, ... 10,000, one ASDU, in turns          |
[[nodiscard]] std::vector<Workload> const& workloads();

/// The one of this name, if there is one.
[[nodiscard]] std::optional<Workload> findWorkload(std::string_view name);

/// The one of this name, which is one of the above.
/// @throws std::bad_optional_access when it is not
[[nodiscard]] Workload workload(std::string_view name);

/// The same traffic, more or less of it.
[[nodiscard]] Workload withFrames(Workload workload, std::uint64_t frames);

/// Called with each frame of a capture, and where its record begins in the file.
using FrameVisitor = std::function<void(Sent const& sent, std::uint64_t position)>;

/// Writes the capture of a workload, and through to the disk, so that nothing is left to be written
/// while others are measured.
/// @param visit  may be empty
/// @return how many of its frames the index is to hold
/// @throws std::runtime_error when it cannot be written
std::uint64_t writeCapture(Workload const& workload, std::string const& path,
                           FrameVisitor const& visit = {});

}  // namespace TalBench
