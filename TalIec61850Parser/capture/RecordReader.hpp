#pragma once

// Internal: reads capture records in place, out of large blocks of the file.

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
/// a record that a block cuts off is moved to the front of the next one. Memory follows what the
/// file holds, never what a record header claims: room is made as octets arrive, and a record
/// that the file cuts short is completed with zeros, with at most `kMaxPadding` of them.
class RecordReader {
public:
    static constexpr std::size_t kBlockSize = std::size_t{256} << 10U;
    /// The first block: room for a small capture, so that opening many of them is cheap.
    static constexpr std::size_t kFirstBlockSize = std::size_t{16} << 10U;
    static constexpr std::size_t kMaxPadding = std::size_t{16} << 20U;

    /// Goes to the start of the file and reads its global header, which is not interpreted.
    /// @param file  outlives the reader; its own position afterwards is unspecified
    RecordReader(std::istream& file, bool isLittleEndian);

    /// True at end of file. A trailing fragment still counts as a (padded) record.
    [[nodiscard]] bool atEnd() {
        require(1);
        return available() == 0;
    }

    /// Offset in the file of the next record's header.
    [[nodiscard]] std::uint64_t fileOffset() const { return fileOffset_; }

    /// The next record, header and captured octets in one; valid until the next call.
    /// @pre not atEnd()
    [[nodiscard]] Octets next() {
        require(RecordHeader::kSize);
        if (available() >= RecordHeader::kSize) {
            std::size_t const size = RecordHeader::kSize + inclLen();
            if (available() >= size) {
                return take(size, size);
            }
        }
        return nextAcrossBlocks();
    }

private:
    [[nodiscard]] std::size_t available() const { return end_ - begin_; }

    /// inclLen of the header at the start of the available octets.
    [[nodiscard]] std::size_t inclLen() const {
        return RecordHeader::read(Octets(buffer_).subspan(begin_), isLittleEndian_).inclLen;
    }

    /// Shows the next `size` octets, as a record that takes `sizeInFile` octets of the file.
    Octets take(std::size_t size, std::size_t sizeInFile) {
        Octets const record = Octets(buffer_).subspan(begin_, size);
        begin_ += size;
        fileOffset_ += sizeInFile;
        return record;
    }

    /// `next` for a record that is not wholly in the buffer yet.
    Octets nextAcrossBlocks();

    /// Makes `size` octets available, or as many as the file still holds.
    void require(std::size_t size) {
        if (available() < size) {
            readUntil(size);
        }
    }
    void readUntil(std::size_t size);
    /// Makes room after `end_`: for a block, or for a record of `size` octets, then at most
    /// doubling what there is.
    void makeRoom(std::size_t size);
    void readBlock();
    /// What a read that failed had brought in before: how many octets from `end_` on.
    std::size_t salvage(std::istream::pos_type from);
    void appendZeros(std::size_t count);

    std::istream& file_;
    bool isLittleEndian_;
    bool fileEnded_ = false;
    std::uint64_t fileOffset_ = 0;
    // buffer_[begin_, end_) has been read from the file and not yet been shown.
    std::vector<std::uint8_t> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
};

}  // namespace TalIec61850Parser::detail
