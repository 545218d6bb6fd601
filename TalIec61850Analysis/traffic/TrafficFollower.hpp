#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficOptions.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace TalIec61850Analysis {

/// Indexes a capture while it is written: each time what was added since the time before.
class TrafficFollower {
public:
    /// Opens nothing yet.
    /// @param path     links are followed; the file need not be there yet
    /// @param options  what is kept, and how it is read; those on several files are not used
    TALIEC61850ANALYSIS_EXPORT explicit TrafficFollower(std::string path,
                                                        TrafficOptions options = {});

    /// Indexes what the file has that was not read yet. A record that the file ends inside is left
    /// for the next call. Where another file has taken the name, or the file has become shorter,
    /// the rest of the one before is read, then what is there from its start.
    ///
    /// Indexes that follow one another can be merged: they are as pieces of one file.
    /// @return an index of one file, with offsets in the whole file; not set where nothing was
    ///         added, or there is no file of that name, or it does not start like a capture yet
    /// @throws std::system_error  the file cannot be opened or read
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<TrafficIndex> readOn();

    /// Whether damage ended the file, so that nothing that is added can be read: the damage is in
    /// the summary of the index that was given last.
    [[nodiscard]] bool isDamaged() const noexcept { return isDamaged_; }

private:
    [[nodiscard]] bool open();
    [[nodiscard]] bool isReplaced() const;
    [[nodiscard]] TrafficIndex indexMore(std::uint64_t startOffset);

    std::string path_;
    TrafficOptions options_;
    std::optional<CaptureFile> capture_;
    bool isDamaged_ = false;
};

}  // namespace TalIec61850Analysis
