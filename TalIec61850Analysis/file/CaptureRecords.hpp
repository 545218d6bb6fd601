#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/file/CaptureDamage.hpp>
#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace TalIec61850Analysis {

/// Walks the records of a classic capture from the first to the last. The file is read in blocks of
/// 1 MiB, or one frame where that is larger; memory is taken for octets that the file holds, never
/// for what a header claims.
class CaptureRecords {
public:
    /// Opens the file, and reads what it starts with.
    /// @throws std::system_error  it cannot be opened or read
    TALIEC61850ANALYSIS_EXPORT explicit CaptureRecords(std::string const& path);

    /// The next record. It claims no octet that the file does not hold.
    /// @return none after the last record, and where the file is damaged: see `damage`
    /// @throws std::system_error  the file cannot be read
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<CaptureRecord> next();

    /// The captured octets of a record of this file.
    /// @param record  what `next` gave, or `cutRecord`
    /// @return valid until the next call of either; fewer octets than the record has where the file
    ///         became shorter meanwhile
    /// @throws std::system_error  the file cannot be read
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::span<std::uint8_t const> frameOf(
        CaptureRecord const& record);

    /// What is wrong with the file. It is known once `next` gave none; not set for a whole file.
    [[nodiscard]] std::optional<CaptureDamage> const& damage() const noexcept { return damage_; }

    /// The truncated last record, once `next` gave none. Its captured size is what the file holds
    /// of it, which may be nothing.
    [[nodiscard]] std::optional<CaptureRecord> const& cutRecord() const noexcept {
        return cutRecord_;
    }

private:
    [[nodiscard]] std::span<std::uint8_t const> view(std::uint64_t fileOffset, std::size_t size);
    void load(std::uint64_t fileOffset, std::size_t size);
    [[nodiscard]] CaptureRecord readHeader(std::span<std::uint8_t const> header) const;

    Descriptor file_;
    std::uint64_t fileSize_ = 0;
    bool isNanosecond_ = false;
    bool isLittleEndian_ = false;
    /// Where the next record's header is in the file.
    std::uint64_t nextOffset_ = 0;
    /// A part of the file, and where it is there.
    std::vector<std::uint8_t> block_;
    std::uint64_t blockOffset_ = 0;
    std::optional<CaptureDamage> damage_;
    std::optional<CaptureRecord> cutRecord_;
};

}  // namespace TalIec61850Analysis
