#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/file/CaptureDamage.hpp>
#include <TalIec61850Analysis/file/CaptureFormat.hpp>
#include <TalIec61850Analysis/file/CaptureInterface.hpp>
#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/file/FileIdentity.hpp>
#include <TalIec61850Analysis/file/ReadMode.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace TalIec61850Analysis {

/// A capture file of either format: its records in sequence, and single ones by their offset. One
/// descriptor is open as long as this object lives. Memory is taken for octets that the file holds,
/// never for what a header claims, and less than 20 MiB whatever the file.
///
/// What the file has when it is opened is read; what is appended later is read where `readOn` asks
/// for it. A file that is replaced by another of its name is read on. One that becomes shorter ends
/// where it does then: `CaptureDamageKind::fileShrank`.
class CaptureFile {
public:
    /// Opens the file, and reads what it starts with. A file that is no capture has no records, and
    /// says so in `damage`.
    /// @param path  links are followed
    /// @param mode  how `next` reads; it gives the same records either way
    /// @throws std::system_error  it cannot be opened or read, or is a pipe
    TALIEC61850ANALYSIS_EXPORT explicit CaptureFile(std::string const& path,
                                                    ReadMode mode = ReadMode::plain);
    /// The file that is moved from can be destroyed and assigned to.
    TALIEC61850ANALYSIS_EXPORT CaptureFile(CaptureFile&& other) noexcept;
    /// Closes the file that was held. That which is moved from can be destroyed and assigned to.
    TALIEC61850ANALYSIS_EXPORT CaptureFile& operator=(CaptureFile&& other) noexcept;
    TALIEC61850ANALYSIS_EXPORT ~CaptureFile();

    /// The next record, in the order of the file. It claims no octet that the file does not hold.
    /// @return null after the last record, and where damage ends the file: see `damage`. Record and
    ///         frame are valid until the next call
    /// @throws std::system_error  the file cannot be read: there is no next record after that
    [[nodiscard]] RecordView const* next() {
        if (next_ == end_ && !readMore()) {
            return nullptr;
        }
        return next_++;
    }

    /// Lets `next` go on with what was appended to the file, once it has given null: first with the
    /// record that the file ended inside. What `damage`, `damages` and `cutRecord` tell is that of
    /// the octets read from then on.
    /// @return whether there is more; never after damage other than the end of the file inside a
    ///         record
    /// @throws std::system_error  the file cannot be asked for its size
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT bool readOn();

    /// The damage that ended the file. It is known once `next` gave null; not set for a file that
    /// was read to its end.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<CaptureDamage> const& damage()
        const noexcept;

    /// All damage met so far, in the order of the file: the first hundred, see `damageCount`. It
    /// may be told up to 64 records before `next` comes there.
    /// @return valid until the next call of `next`
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::span<CaptureDamage const> damages()
        const noexcept;

    /// How often damage has been met so far.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::uint64_t damageCount() const noexcept;

    /// The last record, which the file ends inside, once `next` gave null. Its captured size is
    /// what the file holds of it, which may be nothing.
    /// @return null where no record is cut; valid until this object is changed
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT RecordView const* cutRecord() const noexcept;

    /// How the file is written; classic for a file that is no capture.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT CaptureFormat format() const noexcept;

    /// Octets in the file when it was opened, or read on.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::uint64_t size() const noexcept;

    /// What tells the open file from others.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT FileIdentity identity() const noexcept;

    /// How far `next` has come: the offset in the file of what it gives next, in octets.
    [[nodiscard]] std::uint64_t offset() const noexcept {
        return next_ == end_ ? offsetAfter() : next_->record.fileOffset;
    }

    /// The interfaces described so far, those of all sections in the order of the file: maybe those
    /// of up to 64 records after the one that `next` gave last. Their counts are what the blocks
    /// before that record say.
    /// @return valid until the next call of `next` or `recordAt`
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::span<CaptureInterface const> interfaces()
        const noexcept;

    /// The record that holds an offset, be it that of its header, of its frame or of any octet in
    /// the frame. It is the one that `next` gives, or `cutRecord`; where `next` is does not matter.
    ///
    /// Where `next` or an earlier call has come past, and within 1 MiB after that, little is read.
    /// Elsewhere headers before the offset are looked for, in a next-generation capture where the
    /// section says how long it is: sixteen in a row must lead to the one. Where that does not
    /// tell, records are walked up to the offset. So it also finds records after damage that `next`
    /// does not come past.
    /// @param fileOffset  in octets; any number
    /// @return none where no record holds it
    /// @throws std::system_error  the file cannot be read
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<CaptureRecord> recordAt(
        std::uint64_t fileOffset);

    /// The captured octets of a record of this file, read again.
    /// @param record  of `next`, `cutRecord` or `recordAt`
    /// @return valid until the next call; fewer octets than the record has where the file became
    ///         shorter
    /// @throws std::system_error  the file cannot be read
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::span<std::uint8_t const> frameOf(
        CaptureRecord const& record);

private:
    struct State;

    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT bool readMore();
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::uint64_t offsetAfter() const noexcept;

    std::unique_ptr<State> state_;
    /// Records that are decoded and not yet given.
    RecordView const* next_ = nullptr;
    RecordView const* end_ = nullptr;
};

}  // namespace TalIec61850Analysis
