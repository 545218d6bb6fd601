#include <TalIec61850Parser/capture/RecordReader.hpp>
#include <algorithm>

namespace TalIec61850Parser::detail {

namespace {

static_assert(sizeof(std::size_t) == 8 && sizeof(unsigned long) == 8,
              "record sizes, file positions and hashes are 64 bits wide");

}  // namespace

RecordReader::RecordReader(std::istream& file, bool isLittleEndian)
    : file_(file), isLittleEndian_(isLittleEndian), buffer_(kFirstBlockSize) {
    file_.seekg(0);
    require(wire::kGlobalHeaderSize);
    if (available() < wire::kGlobalHeaderSize) {
        begin_ = end_;  // cut short in there, a file holds no records
        file_.setstate(std::ios_base::failbit);
        return;
    }
    begin_ += wire::kGlobalHeaderSize;
    fileOffset_ = wire::kGlobalHeaderSize;
}

Octets RecordReader::nextAcrossBlocks() {
    if (available() < RecordHeader::kSize) {
        appendZeros(RecordHeader::kSize - available());
    }
    std::size_t const claimed = RecordHeader::kSize + inclLen();
    require(claimed);
    if (available() < claimed) {
        appendZeros(std::min(claimed - available(), kMaxPadding));
    }
    return take(std::min(claimed, available()), claimed);
}

void RecordReader::readUntil(std::size_t size) {
    while (available() < size && !fileEnded_) {
        makeRoom(size);
        readBlock();
    }
}

void RecordReader::makeRoom(std::size_t size) {
    bool const isFirstBlockFull = end_ == kFirstBlockSize && end_ == buffer_.size();
    if (begin_ > 0) {
        std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
                  buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
        end_ -= begin_;
        begin_ = 0;
    }
    if (isFirstBlockFull) {
        buffer_.resize(kBlockSize);
    } else if (end_ == buffer_.size()) {
        buffer_.resize(std::min(2 * buffer_.size(), size));  // one record fills all of it
    }
}

void RecordReader::readBlock() {
    if (!file_.good()) {
        fileEnded_ = true;
        return;
    }
    auto const wanted = static_cast<std::streamsize>(buffer_.size() - end_);
    auto const from = file_.tellg();
    file_.read(reinterpret_cast<char*>(buffer_.data() + end_), wanted);
    end_ += file_.bad() ? salvage(from) : static_cast<std::size_t>(file_.gcount());
    fileEnded_ = !file_.good();
    // A block seldom ends where the file does: that alone is no failure.
    file_.clear(file_.rdstate() & ~std::ios_base::failbit);
}

std::size_t RecordReader::salvage(std::istream::pos_type from) {
    // A failing read does not say how much came before the fault; octet by octet, nothing is lost.
    std::size_t count = 0;
    file_.clear();
    file_.seekg(from);
    while (end_ + count < buffer_.size()) {
        int const octet = file_.get();
        if (!file_.good()) {
            break;
        }
        buffer_[end_ + count++] = static_cast<std::uint8_t>(octet);
    }
    return count;
}

void RecordReader::appendZeros(std::size_t count) {
    file_.setstate(std::ios_base::failbit);  // the file ended inside a record
    if (buffer_.size() - end_ < count) {
        buffer_.resize(end_ + count);
    }
    std::fill_n(buffer_.begin() + static_cast<std::ptrdiff_t>(end_), count, std::uint8_t{0});
    end_ += count;
}

}  // namespace TalIec61850Parser::detail
