#include <TalIec61850Parser/capture/RecordReader.hpp>
#include <algorithm>
#include <span>
#include <utility>

namespace TalIec61850Parser::detail {

namespace {

static_assert(sizeof(std::size_t) == 8 && sizeof(unsigned long) == 8,
              "record sizes, file positions and hashes are 64 bits wide");

/// Reads from a position at which reading has failed. That did not say how much came before the
/// fault; octet by octet, nothing is lost.
/// @return how many octets
std::size_t salvage(std::istream& file, std::istream::pos_type from, std::span<std::uint8_t> room) {
    std::size_t count = 0;
    file.clear();
    file.seekg(from);
    while (count < room.size()) {
        int const octet = file.get();
        if (!file.good()) {
            break;
        }
        room[count++] = static_cast<std::uint8_t>(octet);
    }
    return count;
}

/// Reads the next octets of a file.
/// @return how many; 0 when the file has ended
std::size_t readBlock(std::istream& file, std::span<std::uint8_t> room) {
    if (!file.good()) {
        return 0;
    }
    auto const from = file.tellg();
    file.read(reinterpret_cast<char*>(room.data()), static_cast<std::streamsize>(room.size()));
    std::size_t const count =
        file.bad() ? salvage(file, from, room) : static_cast<std::size_t>(file.gcount());
    // A block seldom ends where the file does: that alone is no failure.
    file.clear(file.rdstate() & ~std::ios_base::failbit);
    return count;
}

}  // namespace

RecordReader::RecordReader(std::istream& file, bool isLittleEndian, bool readAhead)
    : file_(file),
      isLittleEndian_(isLittleEndian),
      blocks_([&file](std::span<std::uint8_t> room) { return readBlock(file, room); }, readAhead) {
    file_.seekg(0);
    require(wire::kGlobalHeaderSize);
    if (unread_.size() < wire::kGlobalHeaderSize) {
        unread_ = {};  // cut short in there, a file holds no records
        file_.setstate(std::ios_base::failbit);
        return;
    }
    unread_ = unread_.subspan(wire::kGlobalHeaderSize);
    fileOffset_ = wire::kGlobalHeaderSize;
}

Octets RecordReader::nextAcrossBlocks() {
    if (unread_.size() < RecordHeader::kSize) {
        appendZeros(RecordHeader::kSize - unread_.size());
    }
    std::size_t const claimed = RecordHeader::kSize + inclLen();
    require(claimed);
    if (unread_.size() < claimed) {
        appendZeros(std::min(claimed - unread_.size(), kMaxPadding));
    }
    return take(std::min(claimed, unread_.size()), claimed);
}

void RecordReader::readUntil(std::size_t size) {
    while (unread_.size() < size && !fileEnded_) {
        Octets const longer = blocks_.next(unread_);
        fileEnded_ = longer.size() == unread_.size();
        unread_ = longer;
    }
}

void RecordReader::appendZeros(std::size_t count) {
    file_.setstate(std::ios_base::failbit);  // the file ended inside a record
    std::vector<std::uint8_t> padded;
    padded.reserve(unread_.size() + count);
    padded.assign(unread_.begin(), unread_.end());
    padded.resize(unread_.size() + count);
    padded_ = std::move(padded);
    unread_ = padded_;
}

}  // namespace TalIec61850Parser::detail
