// The octets of a file in blocks, read on this thread and on another one.

#include <gtest/gtest.h>

#include <TalIec61850Parser/wire/BlockReader.hpp>
#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "support/Bytes.hpp"

namespace TalTest::BlockReaderTest {
namespace {

using TalIec61850Parser::wire::BlockReader;
using TalIec61850Parser::wire::Octets;
using TalIec61850Parser::wire::ReadAhead;
using TalIec61850Parser::wire::startQuietThread;

constexpr std::size_t kFirst = BlockReader::kFirstBlockSize;
constexpr std::size_t kBlock = BlockReader::kBlockSize;
constexpr std::size_t kHeadroom = ReadAhead::kHeadroom;
constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

/// Octets that are not alike anywhere.
Bytes contentOf(std::size_t size) {
    Bytes content(size);
    std::uint32_t state = 1;
    for (std::uint8_t& octet : content) {
        state = state * 1664525U + 1013904223U;
        octet = static_cast<std::uint8_t>(state >> 24U);
    }
    return content;
}

/// A file in memory. Read by one thread at a time; what tests ask of it may be asked at any time.
class Source {
public:
    explicit Source(std::size_t size) : content_(contentOf(size)) {}

    /// The most octets that one read brings.
    std::size_t most = kNever;
    /// Where reading throws.
    std::size_t faultAt = kNever;
    /// How far reading may be ahead of what has been used; watched, not enforced.
    std::atomic<std::size_t> used = 0;
    std::atomic<std::size_t> furthestAhead = 0;
    std::atomic<std::size_t> reads = 0;
    std::atomic<std::size_t> readsElsewhere = 0;
    std::atomic<bool> interruptible = false;

    [[nodiscard]] Bytes const& content() const { return content_; }

    [[nodiscard]] BlockReader::Read reading() {
        return [this](std::span<std::uint8_t> room) { return read(room); };
    }

private:
    std::size_t read(std::span<std::uint8_t> room) {
        ++reads;
        if (std::this_thread::get_id() != owner_) {
            ++readsElsewhere;
            sigset_t blocked{};
            pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
            interruptible = sigismember(&blocked, SIGINT) == 0;
        }
        if (position_ >= faultAt) throw std::runtime_error("the disk fails here");
        std::size_t const count =
            std::min({room.size(), most, content_.size() - position_, faultAt - position_});
        std::copy_n(content_.begin() + static_cast<std::ptrdiff_t>(position_), count, room.begin());
        position_ += count;
        furthestAhead =
            std::max(furthestAhead.load(), position_ - std::min(position_, used.load()));
        return count;
    }

    Bytes content_;
    std::size_t position_ = 0;
    std::thread::id owner_ = std::this_thread::get_id();
};

/// How a file is read.
enum class Mode { here, ahead, withoutThreads };

std::atomic<int> startedThreads = 0;

std::thread startCounted(std::function<void()> run) {
    ++startedThreads;
    return startQuietThread(std::move(run));
}

std::thread startNone(std::function<void()> /*run*/) {
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
}

BlockReader readerOf(Source& source, Mode mode) {
    return {source.reading(), mode != Mode::here,
            mode == Mode::withoutThreads ? &startNone : &startCounted};
}

/// Uses a file in records, as a user does who needs each of them in one piece.
class RecordUser {
public:
    explicit RecordUser(Source& source, Mode mode)
        : source_(source), reader_(readerOf(source, mode)) {}

    /// @return false when the file has ended before, or what was given is not what is there
    bool take(std::size_t size) {
        while (unread_.size() < size) {
            Octets const longer = reader_.next(unread_);
            bool const hasEnded = longer.size() == unread_.size();
            unread_ = longer;
            if (hasEnded) return false;
        }
        Octets const record = unread_.first(size);
        unread_ = unread_.subspan(size);
        isRight_ = isRight_ &&
                   std::equal(record.begin(), record.end(),
                              source_.content().begin() + static_cast<std::ptrdiff_t>(position_));
        position_ += size;
        source_.used = position_;
        return isRight_;
    }

    /// Takes records of this size, and then what is left.
    /// @return how many octets there were; none when some were not those of the file
    std::size_t takeAll(std::size_t size) {
        while (take(size)) continue;
        take(unread_.size());
        return isRight_ ? position_ : 0;
    }

    [[nodiscard]] std::size_t left() const { return unread_.size(); }
    [[nodiscard]] BlockReader& reader() { return reader_; }

private:
    Source& source_;
    BlockReader reader_;
    Octets unread_;
    std::size_t position_ = 0;
    bool isRight_ = true;
};

struct BlockReading : testing::TestWithParam<Mode> {};

INSTANTIATE_TEST_SUITE_P(Modes, BlockReading,
                         testing::Values(Mode::here, Mode::ahead, Mode::withoutThreads),
                         [](auto const& mode) {
                             switch (mode.param) {
                                 case Mode::here:
                                     return std::string("Here");
                                 case Mode::ahead:
                                     return std::string("Ahead");
                                 default:
                                     return std::string("WithoutThreads");
                             }
                         });

TEST_P(BlockReading, GivesRecordsOfAnySize) {
    for (std::size_t const size :
         {std::size_t{97}, std::size_t{1500}, kFirst, kHeadroom - 1, kHeadroom, kHeadroom + 1,
          kBlock - 1, kBlock, kBlock + 1, 3 * kBlock, 5 * kBlock + 3}) {
        Source source(12 * kBlock + 77);
        RecordUser user(source, GetParam());
        EXPECT_EQ(user.takeAll(size), source.content().size()) << "records of " << size;
    }
}

TEST_P(BlockReading, JoinsWhatEachBlockCutsOff) {
    // What is left of a block before the next one is asked for, up to more than has room before it.
    for (std::size_t const left : {std::size_t{0}, std::size_t{1}, std::size_t{15}, std::size_t{16},
                                   kHeadroom - 1, kHeadroom, kHeadroom + 1, kBlock}) {
        Source source(9 * kBlock);
        RecordUser user(source, GetParam());
        ASSERT_TRUE(user.take(kFirst));
        bool isRight = true;
        while (isRight) {
            isRight =
                user.take(user.left() + 1) && user.take(user.left() - std::min(left, user.left()));
        }
        EXPECT_EQ(user.takeAll(1), source.content().size()) << left << " octets are left";
    }
}

TEST_P(BlockReading, GivesSmallFilesWhole) {
    for (std::size_t const size :
         {std::size_t{0}, std::size_t{1}, kFirst - 1, kFirst, kFirst + 1}) {
        Source source(size);
        RecordUser user(source, GetParam());
        EXPECT_EQ(user.takeAll(64), size);
    }
}

TEST_P(BlockReading, GivesEverythingWhereReadsBringLess) {
    for (std::size_t const most : {std::size_t{1}, std::size_t{7}, std::size_t{4096}, kBlock - 1}) {
        Source source(most < 4096 ? 3 * kFirst : 4 * kBlock);
        source.most = most;
        RecordUser user(source, GetParam());
        EXPECT_EQ(user.takeAll(1000), source.content().size()) << "at most " << most;
    }
}

TEST_P(BlockReading, ThrowsWhatReadingThrowsAfterAllOctetsBefore) {
    for (std::size_t const fault :
         {std::size_t{0}, std::size_t{1}, kFirst - 1, kFirst, kFirst + 1, kFirst + kBlock,
          kFirst + kBlock + 1, kFirst + 4 * kBlock, kFirst + 6 * kBlock - 1}) {
        for (std::size_t const size : {std::size_t{1}, std::size_t{1000}, 2 * kBlock}) {
            Source source(10 * kBlock);
            source.faultAt = fault;
            RecordUser user(source, GetParam());
            std::size_t taken = 0;
            EXPECT_THROW(
                while (user.take(size)) { taken += size; }, std::runtime_error)
                << fault;
            EXPECT_EQ(taken, fault / size * size) << "records of " << size;
            EXPECT_TRUE(user.reader().next({}).empty());
        }
    }
}

TEST_P(BlockReading, EndsOnceAndForAll) {
    Source source(2 * kBlock);
    BlockReader reader = readerOf(source, GetParam());
    while (!reader.next({}).empty()) continue;
    std::size_t const reads = source.reads;
    Bytes const unread = {1, 2, 3};
    Octets const again = reader.next(unread);
    EXPECT_EQ(again.data(), unread.data());
    EXPECT_EQ(again.size(), unread.size());
    EXPECT_EQ(source.reads, reads);
}

TEST_P(BlockReading, CanEndBeforeTheFileDoes) {
    for (std::size_t blocks = 0; blocks <= 8; ++blocks) {
        std::optional<Source> source(std::in_place, 10 * kBlock);
        {
            BlockReader reader = readerOf(*source, GetParam());
            for (std::size_t i = 0; i < blocks; ++i)
                EXPECT_FALSE(reader.next({}).empty()) << "block " << i;
        }
        source.reset();  // nothing reads it any more
    }
}

TEST_P(BlockReading, CanBeMoved) {
    Source source(5 * kBlock);
    BlockReader first = readerOf(source, GetParam());
    std::size_t count = first.next({}).size();
    count += first.next({}).size();
    BlockReader second = std::move(first);
    for (Octets block = second.next({}); !block.empty(); block = second.next({})) {
        EXPECT_TRUE(std::equal(block.begin(), block.end(),
                               source.content().begin() + static_cast<std::ptrdiff_t>(count)));
        count += block.size();
    }
    EXPECT_EQ(count, source.content().size());
}

TEST(BlockReadingAhead, IsDoneByAnotherThread) {
    Source source(5 * kBlock);
    RecordUser user(source, Mode::ahead);
    EXPECT_EQ(user.takeAll(100), source.content().size());
    EXPECT_EQ(source.reads - source.readsElsewhere, 1U) << "the first block";
}

TEST(BlockReadingAhead, StartsNoThreadForASmallFile) {
    startedThreads = 0;
    for (std::size_t const size : {std::size_t{0}, std::size_t{100}, kFirst - 1}) {
        Source source(size);
        RecordUser user(source, Mode::ahead);
        EXPECT_EQ(user.takeAll(10), size);
    }
    EXPECT_EQ(startedThreads, 0);
    Source source(kFirst);
    RecordUser user(source, Mode::ahead);
    EXPECT_EQ(user.takeAll(10), kFirst);
    EXPECT_EQ(startedThreads, 1);
}

TEST(BlockReadingAhead, StaysWithinItsBlocks) {
    Source source(40 * kBlock);
    RecordUser user(source, Mode::ahead);
    EXPECT_EQ(user.takeAll(1500), source.content().size());
    EXPECT_LE(source.furthestAhead, ReadAhead::kBlocks * kBlock + 1500);
}

TEST(BlockReadingAhead, KeepsSignalsFromItsThreadAlone) {
    sigset_t before{};
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    ASSERT_EQ(sigismember(&before, SIGINT), 0);
    Source source(5 * kBlock);
    source.interruptible = true;
    RecordUser user(source, Mode::ahead);
    EXPECT_EQ(user.takeAll(1000), source.content().size());
    EXPECT_FALSE(source.interruptible);
    sigset_t after{};
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    EXPECT_EQ(sigismember(&after, SIGINT), 0);
}

TEST(BlockReadingWithoutThreads, IsDoneByThisOne) {
    Source source(5 * kBlock);
    RecordUser user(source, Mode::withoutThreads);
    EXPECT_EQ(user.takeAll(100), source.content().size());
    EXPECT_EQ(source.readsElsewhere, 0U);
}

TEST(BlockReadingHere, ReadsTwiceAsMuchEachTimeForALargeRecord) {
    // What is there is copied at each step, so that there may only be a few.
    Source source(64 * kBlock);
    RecordUser user(source, Mode::here);
    EXPECT_TRUE(user.take(source.content().size()));
    EXPECT_LE(source.reads, 9U);
}

TEST(BlockReadingHere, StartsNoThread) {
    startedThreads = 0;
    Source source(5 * kBlock);
    RecordUser user(source, Mode::here);
    EXPECT_EQ(user.takeAll(100), source.content().size());
    EXPECT_EQ(source.readsElsewhere, 0U);
    EXPECT_EQ(startedThreads, 0);
}

}  // namespace
}  // namespace TalTest::BlockReaderTest
