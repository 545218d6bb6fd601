// The block reader below PcapParser, on streams that misbehave.

#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/RecordReader.hpp>
#include <algorithm>
#include <cstring>
#include <ios>
#include <istream>
#include <streambuf>
#include <string>
#include <vector>

#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"

namespace TalTest::RecordReaderTest {
namespace {

using TalIec61850Parser::detail::RecordReader;

/// A file whose disk fails: reading past `fault` throws, as a file buffer does on an I/O error.
/// Reading many octets at once has then moved on to the fault.
class FaultyBuffer : public std::streambuf {
public:
    /// @param isPassing  whether reading goes well once it has failed
    FaultyBuffer(Bytes content, std::size_t fault, bool isPassing = false)
        : content_(std::move(content)), fault_(fault), isPassing_(isPassing) {}

protected:
    std::streamsize xsgetn(char* out, std::streamsize wanted) override {
        auto const count = std::min(static_cast<std::size_t>(wanted), content_.size() - position_);
        if (position_ + count > fault_) {
            position_ = std::max(position_, fault_);
            fault_ = isPassing_ ? SIZE_MAX : fault_;
            throw std::ios_base::failure("the disk fails here");
        }
        std::copy_n(content_.begin() + static_cast<std::ptrdiff_t>(position_), count, out);
        position_ += count;
        return static_cast<std::streamsize>(count);
    }
    int_type underflow() override {
        if (position_ + 1 > fault_) {
            throw std::ios_base::failure("the disk fails here");
        }
        return position_ < content_.size() ? int_type{content_[position_]} : traits_type::eof();
    }
    int_type uflow() override {
        auto const octet = underflow();
        position_ += octet == traits_type::eof() ? 0 : 1;
        return octet;
    }
    pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                     std::ios_base::openmode) override {
        position_ = static_cast<std::size_t>(
            offset + (from == std::ios_base::cur ? static_cast<off_type>(position_) : 0));
        return static_cast<pos_type>(static_cast<off_type>(position_));
    }
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override {
        return seekoff(off_type(position), std::ios_base::beg, which);
    }

private:
    Bytes content_;
    std::size_t fault_;
    bool isPassing_;
    std::size_t position_ = 0;
};

struct Walked {
    std::vector<std::uint64_t> positions;
    std::vector<std::size_t> sizes;
    friend bool operator==(Walked const&, Walked const&) = default;
};

/// Read on this thread, or ahead by another one.
struct RecordReading : testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(Ways, RecordReading, testing::Bool(), [](auto const& readAhead) {
    return std::string(readAhead.param ? "Ahead" : "Here");
});

Walked walk(std::streambuf& buffer, bool readAhead) {
    std::istream file(&buffer);
    RecordReader records(file, true, readAhead);
    Walked walked;
    while (!records.atEnd()) {
        walked.positions.push_back(records.fileOffset());
        walked.sizes.push_back(records.next().size());
    }
    return walked;
}

Bytes threeRecords() {
    CaptureBuilder builder(CaptureVariant::microLittle);
    return builder.add(1, 0, Bytes(60, 1)).add(2, 0, Bytes(100, 2)).add(3, 0, Bytes(20, 3)).bytes();
}

TEST_P(RecordReading, ShowsRecordsWithTheirPositions) {
    FaultyBuffer file(threeRecords(), SIZE_MAX);
    EXPECT_EQ(walk(file, GetParam()), (Walked{{24, 100, 216}, {76, 116, 36}}));
}

TEST_P(RecordReading, ShowsWhatLiesBeforeAReadFaultAtEveryOffset) {
    Bytes const content = threeRecords();
    for (std::size_t fault = 0; fault <= content.size(); ++fault) {
        FaultyBuffer faulty(content, fault);
        FaultyBuffer cutShort(Bytes(content.begin(), content.begin() + static_cast<long>(fault)),
                              SIZE_MAX);
        EXPECT_EQ(walk(faulty, GetParam()), walk(cutShort, GetParam())) << "fault at " << fault;
    }
}

TEST_P(RecordReading, ShowsEverythingWhereAReadFaultPasses) {
    CaptureBuilder builder(CaptureVariant::microLittle);
    for (std::size_t i = 0; i < 100; ++i)
        builder.add(1, 0, Bytes(RecordReader::kBlockSize / 16, 1));
    Bytes const content = builder.bytes();
    FaultyBuffer faultless(content, SIZE_MAX);
    Walked const expected = walk(faultless, GetParam());
    for (std::size_t const fault : {std::size_t{0}, std::size_t{1}, RecordReader::kBlockSize - 1,
                                    RecordReader::kBlockSize, content.size() - 1}) {
        FaultyBuffer faulty(content, fault, true);
        EXPECT_EQ(walk(faulty, GetParam()), expected) << "fault at " << fault;
    }
}

TEST_P(RecordReading, ShowsNothingOfAFileCutInItsGlobalHeader) {
    for (std::size_t size = 0; size <= 24; ++size) {
        FaultyBuffer file(Bytes(size, 0xD4), SIZE_MAX);
        EXPECT_TRUE(walk(file, GetParam()).positions.empty()) << size;
    }
}

TEST_P(RecordReading, MakesOneRecordOfAHeaderCutShort) {
    for (std::size_t size = 1; size <= 16; ++size) {
        FaultyBuffer file(Bytes(24 + size, 0x00), SIZE_MAX);
        EXPECT_EQ(walk(file, GetParam()), (Walked{{24}, {16}})) << size;
    }
}

TEST_P(RecordReading, MakesOneRecordOfARecordCutShort) {
    Bytes const content = threeRecords();
    for (std::size_t size = 25; size <= content.size(); ++size) {
        FaultyBuffer file(prefix(content, size), SIZE_MAX);
        std::vector<std::uint64_t> expected = {24, 100, 216};
        std::erase_if(expected, [&](std::uint64_t begin) { return begin >= size; });
        EXPECT_EQ(walk(file, GetParam()).positions, expected) << size;
    }
}

/// Whether the file has failed once all its records are read.
bool failsInTheEnd(Bytes const& content, bool readAhead) {
    FaultyBuffer buffer(content, SIZE_MAX);
    std::istream file(&buffer);
    RecordReader records(file, true, readAhead);
    while (!records.atEnd()) static_cast<void>(records.next());
    return file.fail();
}

TEST_P(RecordReading, LetsAFileFailThatIsCutShortAndNoOther) {
    Bytes const content = threeRecords();
    for (std::size_t size = 0; size <= content.size(); ++size) {
        bool const isWhole = size == 24 || size == 100 || size == 216 || size == content.size();
        EXPECT_EQ(failsInTheEnd(prefix(content, size), GetParam()), !isWhole) << size;
    }
}

TEST_P(RecordReading, ShowsNothingOfAFileThatIsBadToBeginWith) {
    FaultyBuffer buffer(threeRecords(), SIZE_MAX);
    std::istream file(&buffer);
    file.setstate(std::ios_base::badbit);
    EXPECT_TRUE(RecordReader(file, true, GetParam()).atEnd());
}

TEST_P(RecordReading, CompletesACutRecordWithZerosNotWithOctetsOfEarlierBlocks) {
    CaptureBuilder builder(CaptureVariant::microLittle);
    builder.add(1, 0, Bytes(RecordReader::kBlockSize, 0xEE)).add(2, 0, Bytes(5000, 0xEE));
    Bytes content = builder.bytes();
    content.resize(content.size() - 4000);
    FaultyBuffer buffer(content, SIZE_MAX);
    std::istream file(&buffer);
    RecordReader records(file, true, GetParam());
    static_cast<void>(records.next());
    auto const record = records.next();
    ASSERT_EQ(record.size(), 16U + 5000U);
    EXPECT_TRUE(std::all_of(record.end() - 4000, record.end(), [](auto o) { return o == 0; }));
    EXPECT_EQ(record[16 + 999], 0xEE);
}

TEST_P(RecordReading, PadsAtMostSixteenMebibytes) {
    CaptureBuilder builder(CaptureVariant::microLittle);
    Bytes content = builder.add(1, 0, Bytes(10, 1)).bytes();
    std::memset(content.data() + 24 + 8, 0xFF, 4);  // incl_len
    FaultyBuffer buffer(content, SIZE_MAX);
    std::istream file(&buffer);
    RecordReader records(file, true, GetParam());
    EXPECT_EQ(records.next().size(), 16U + 10U + (std::size_t{16} << 20U));
    EXPECT_EQ(records.fileOffset(), 24UL + 16UL + 0xFFFFFFFFUL);
    EXPECT_TRUE(records.atEnd());
}

TEST_P(RecordReading, ShowsRecordsLargerThanABlock) {
    CaptureBuilder builder(CaptureVariant::microLittle);
    builder.add(1, 0, Bytes(7, 1));
    builder.add(2, 0, Bytes(5 * RecordReader::kBlockSize + 3, 2)).add(3, 0, Bytes(9, 3));
    FaultyBuffer file(builder.bytes(), SIZE_MAX);
    EXPECT_EQ(walk(file, GetParam()).sizes,
              (std::vector<std::size_t>{23, 16 + 5 * RecordReader::kBlockSize + 3, 25}));
}

}  // namespace
}  // namespace TalTest::RecordReaderTest
