#pragma once

// Internal: reads capture records in place, out of large blocks of the file.

#include <TalIec61850Parser/wire/BlockReader.hpp>
#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <vector>

namespace TalIec61850Parser::detail {

using wire::Octets;
using wire::RecordHeader;

/// Walks the records of an open classic capture file.
///
/// Reads through the file's own stream in blocks and shows each record in place; the part of
/// a record that a block cuts off is put before the next one. Memory follows what the file holds,
/// never what a record header claims: room is made as octets arrive, and a record that the file
/// cuts short is completed with zeros, with at most `kMaxPadding` of them.
class RecordReader {
public:
    static constexpr std::size_t kBlockSize = wire::BlockReader::kBlockSize;
    static constexpr std::size_t kMaxPadding = std::size_t{16} << 20U;

    /// Goes to the start of the file and reads its global header, which is not interpreted.
    /// @param file       outlives the reader; its own position afterwards is unspecified
    /// @param readAhead  have another thread read the file. Until the reader has come to its end or
    ///                   is destroyed, nothing else may use `file` then
    RecordReader(std::istream& file, bool isLittleEndian, bool readAhead = false);

    /// True at end of file. A trailing fragment still counts as a (padded) record.
    [[nodiscard]] bool atEnd() {
        require(1);
        return unread_.empty();
    }

    /// Offset in the file of the next record's header.
    [[nodiscard]] std::uint64_t fileOffset() const { return fileOffset_; }

    /// The next record, header and captured octets in one; valid until the next call.
    /// @pre not atEnd()
    [[nodiscard]] Octets next() {
        require(RecordHeader::kSize);
        if (unread_.size() >= RecordHeader::kSize) {
            std::size_t const size = RecordHeader::kSize + inclLen();
            if (unread_.size() >= size) {
                return take(size, size);
            }
        }
        return nextAcrossBlocks();
    }

private:
    /// inclLen of the header at the start of the unread octets.
    [[nodiscard]] std::size_t inclLen() const {
        return RecordHeader::read(unread_, isLittleEndian_).inclLen;
    }

    /// Shows the next `size` octets, as a record that takes `sizeInFile` octets of the file.
    Octets take(std::size_t size, std::size_t sizeInFile) {
        Octets const record = unread_.first(size);
        unread_ = unread_.subspan(size);
        fileOffset_ += sizeInFile;
        return record;
    }

    /// `next` for a record that is not wholly in the block.
    Octets nextAcrossBlocks();

    /// Makes `size` octets available, or as many as the file still holds.
    void require(std::size_t size) {
        if (unread_.size() < size) {
            readUntil(size);
        }
    }
    void readUntil(std::size_t size);
    void appendZeros(std::size_t count);

    std::istream& file_;
    bool isLittleEndian_;
    bool fileEnded_ = false;
    std::uint64_t fileOffset_ = 0;
    wire::BlockReader blocks_;
    // Has been read from the file and not yet been shown; in a block or in `padded_`.
    Octets unread_;
    std::vector<std::uint8_t> padded_;
};

}  // namespace TalIec61850Parser::detail
