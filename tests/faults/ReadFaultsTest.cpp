// Captures that can be read in part, in small pieces, or not at all.

#include <gtest/gtest.h>

#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <cstddef>
#include <iostream>
#include <string>

#include "capture/StreamCapture.hpp"
#include "faults/FaultTraffic.hpp"
#include "faults/FaultyReads.hpp"
#include "goose/GoosePduText.hpp"
#include "index/IndexImage.hpp"
#include "index/Indexing.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"
#include "support/TempFile.hpp"
#include "sv/AsduText.hpp"

namespace TalTest::ReadFaultsTest {
namespace {

using namespace TalIec61850Parser;

constexpr auto kNotClassic = "Invalid PCAP file format\n";

struct Outcome {
    IndexImage image;
    std::string message;
};

Outcome indexWith(ReadFaults const& faults, std::string const& path, IndexOptions const& options) {
    StreamCapture const errors(std::cerr);
    Db db;
    {
        FaultyReads const reads(faults);
        indexInto(db, path, everything, options);
    }
    return {.image = imageOf(db), .message = errors.text()};
}

void expectSame(Outcome const& actual, Outcome const& expected) {
    EXPECT_EQ(difference(actual.image, expected.image), "");
    EXPECT_EQ(actual.message, expected.message);
}

/// With and without reading ahead, which must not differ.
Outcome indexWith(ReadFaults const& faults, std::string const& path) {
    Outcome const outcome = indexWith(faults, path, {});
    expectSame(indexWith(faults, path, {.readAhead = true}), outcome);
    return outcome;
}

/// One GOOSE and one SV record each turn, and one that nobody wants.
Bytes smallCapture() { return mixedCapture(CaptureVariant::nanoBig, 2); }

class FaultyCapture {
public:
    explicit FaultyCapture(Bytes capture) : capture_(std::move(capture)), file_(capture_) {}

    [[nodiscard]] std::string const& path() const { return file_.path(); }
    [[nodiscard]] std::size_t size() const { return capture_.size(); }

    /// A fault at that offset must leave what the file gives when it really ends there.
    void expectPartBefore(std::size_t offset) {
        SCOPED_TRACE("offset " + std::to_string(offset));
        cut_.assign(prefix(capture_, offset));
        Outcome expected = indexWith({}, cut_.path());
        expected.image = withFileName(expected.image, path());
        for (bool const fails : {false, true})
            for (std::size_t const most : {ReadFaults::never, std::size_t{7}})
                expectSame(indexWith({.endsAt = offset, .failsThere = fails, .most = most}, path()),
                           expected);
    }

private:
    Bytes capture_;
    ScratchFile file_;
    ScratchFile cut_;
};

TEST(ReadFaults, AreSeenByTheLibrary) {
    TempFile const file(smallCapture());
    FaultyReads const reads({});
    libraryImage({file.path()});
    EXPECT_GE(FaultyReads::reads(), 2U);
    EXPECT_GE(FaultyReads::seeks(), 2U);
}

TEST(ReadFaults, AtAnyOffsetLeaveThePacketsBefore) {
    FaultyCapture capture(smallCapture());
    for (std::size_t offset = 0; offset <= capture.size(); ++offset)
        capture.expectPartBefore(offset);
}

TEST(ReadFaults, InLaterBlocksLeaveThePacketsBefore) {
    constexpr std::size_t small = std::size_t{16} << 10U;
    constexpr std::size_t block = std::size_t{256} << 10U;
    FaultyCapture capture(svCapture(3000, 1));
    ASSERT_GT(capture.size(), small + block + 1000);
    for (std::size_t const end : {small, block, small + block})
        for (std::size_t const offset : {end - 1, end, end + 1, end + 77, end + 1000})
            capture.expectPartBefore(offset);
}

TEST(ReadFaults, InACaptureOfManyKindsLeaveThePacketsBefore) {
    auto paths = recorded({"goose-nested-structures-two-relays.pcap"});
    paths.push_back(ownCapture("own-goose-retransmissions.pcap"));
    for (std::string const& path : paths) {
        FaultyCapture faulty(prefix(readFile(path), 4000));
        constexpr std::size_t step = 13;
        for (std::size_t offset = 0; offset <= faulty.size(); offset += step)
            faulty.expectPartBefore(offset);
    }
}

TEST(ReadFaults, ThatGiveLessThanAskedForChangeNothing) {
    for (Bytes const& capture : {smallCapture(), svCapture(2000, 1)}) {
        TempFile const file(capture);
        Outcome const expected = indexWith({}, file.path());
        for (std::size_t const most : {1UL, 2UL, 3UL, 7UL})
            for (bool const isInterrupted : {false, true})
                expectSame(indexWith({.most = most, .isInterrupted = isInterrupted}, file.path()),
                           expected);
    }
}

TEST(ReadFaults, ThatFailOnceChangeNothingBehindTheMagicNumber) {
    TempFile const file(svCapture(6000, 1));
    Outcome const whole = indexWith({}, file.path());
    std::size_t read = 1;
    for (;; ++read) {
        Outcome const outcome = indexWith({.failingRead = read}, file.path());
        if (FaultyReads::reads() < read) break;
        SCOPED_TRACE("read " + std::to_string(read));
        expectSame(outcome, read == 1 ? Outcome{.image = {}, .message = kNotClassic} : whole);
    }
    EXPECT_GE(read, 4U);
}

TEST(ReadFaults, OfSeekingLeaveNoPacketThatIsNotThere) {
    TempFile const file(smallCapture());
    Outcome const whole = indexWith({}, file.path());
    std::size_t seek = 1;
    for (;; ++seek) {
        Outcome const outcome = indexWith({.failingSeek = seek}, file.path());
        if (FaultyReads::seeks() < seek) break;
        SCOPED_TRACE("lseek " + std::to_string(seek));
        bool const isRefused = outcome.message == kNotClassic;
        EXPECT_TRUE(outcome.image == whole.image || outcome.image.streams.empty());
        EXPECT_TRUE(outcome.message.empty() || isRefused) << outcome.message;
    }
    EXPECT_GE(seek, 3U);
}

/// Decodes under one fault after the other: an empty result, unless the element is before it.
/// @param show  `std::string show()`, empty for an empty result
template <typename Show>
void expectEmptyUnlessWhole(std::size_t begin, std::size_t end, Show const& show) {
    std::string const whole = show();
    EXPECT_NE(whole, "");
    for (std::size_t offset = begin; offset <= end; ++offset) {
        for (bool const fails : {false, true}) {
            FaultyReads const reads({.endsAt = offset, .failsThere = fails});
            EXPECT_EQ(show(), offset < end ? "" : whole) << offset;
        }
    }
    for (std::size_t const most : {1UL, 2UL, 3UL, 7UL}) {
        FaultyReads const reads({.most = most, .isInterrupted = true});
        EXPECT_EQ(show(), whole) << most;
    }
    FaultyReads const reads({.failingSeek = 1});
    EXPECT_EQ(show(), "");
}

TEST(ReadFaults, OfADecodedGooseGiveAnEmptyOne) {
    for (std::size_t const entries : {1UL, 600UL}) {  // less and more than a buffer
        GooseMessage message;
        message.setData(std::vector<Bytes>(entries, dataBoolean(true)));
        Bytes const frame = gooseFrame({}, message);
        TempFile const file(frame);
        std::size_t const begin = find(frame, goosePdu(message)).value();
        expectEmptyUnlessWhole(begin, frame.size(), [&] {
            return textOf(GooseParser::parseGoosePDUFromFile(file.path(), begin));
        });
    }
}

TEST(ReadFaults, OfADecodedSvGiveNone) {
    SvMessage message;
    message.asdus.resize(20);
    Bytes const frame = svFrame({}, message);
    TempFile const file(frame);
    std::size_t const begin = find(frame, savPdu(message)).value() + sequenceOffset(message);
    expectEmptyUnlessWhole(begin, frame.size(),
                           [&] { return textOf(SvParser::parseASDUFromFile(file.path(), begin)); });
}

}  // namespace
}  // namespace TalTest::ReadFaultsTest
