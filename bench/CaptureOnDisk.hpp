#pragma once

#include <cstdint>
#include <string>

#include "bench/Workloads.hpp"
#include "support/TempFile.hpp"

namespace TalBench {

/// The capture of a workload in a temporary directory; removed on destruction.
class CaptureOnDisk {
public:
    /// @throws std::runtime_error when it cannot be written
    explicit CaptureOnDisk(Workload const& workload)
        : path_(directory_.file(workload.name + ".pcap")),
          frames_(workload.frames),
          packets_(writeCapture(workload, path_)) {}

    [[nodiscard]] std::string const& path() const { return path_; }
    [[nodiscard]] std::uint64_t frames() const { return frames_; }
    /// How many of the frames the index is to hold.
    [[nodiscard]] std::uint64_t packets() const { return packets_; }

private:
    TalTest::TempDir directory_;
    std::string path_;
    std::uint64_t frames_;
    std::uint64_t packets_;
};

}  // namespace TalBench
