#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Analysis {

/// The frames of a capture that hold given offsets, as those of indexed packets.
class PacketFrames {
public:
    /// Walks the record headers of the capture once.
    /// @param path         a capture; of a damaged one, what comes before the damage
    /// @param fileOffsets  in octets, in any order; those that no frame holds are ignored
    /// @throws std::system_error  the file cannot be opened or read
    TALIEC61850ANALYSIS_EXPORT PacketFrames(std::string const& path,
                                            std::vector<std::uint64_t> fileOffsets);

    /// The record in whose captured octets an offset is.
    /// @param fileOffset  one of those given
    /// @return none where the file has no such record
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<CaptureRecord> recordAt(
        std::uint64_t fileOffset) const;

    /// The captured octets of a record that `recordAt` gave. The file is opened for that, unless it
    /// is still open, and stays open.
    /// @return fewer octets than the record has where the file became shorter meanwhile
    /// @throws std::system_error  the file cannot be opened or read
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::vector<std::uint8_t> frameOf(
        CaptureRecord const& record);

    /// Closes the file until `frameOf` is called again, so that there may be more captures than
    /// files can be open.
    void close() noexcept { file_ = Descriptor(); }

private:
    std::string path_;
    Descriptor file_;
    /// Those that hold one of the offsets, in the order of the file.
    std::vector<CaptureRecord> found_;
};

}  // namespace TalIec61850Analysis
