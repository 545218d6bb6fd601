#include <gtest/gtest.h>
#include <sys/stat.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <fstream>
#include <string>
#include <vector>

#include "index/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

// Captures that are larger than 32 bits can count. What they hold besides a few frames are holes in
// a file in memory, which take no room there.

namespace TalTest::HugeCaptureTest {
namespace {

using namespace TalIec61850Parser;

constexpr std::uint64_t kFourGib = std::uint64_t{1} << 32U;
constexpr std::uint32_t kHoleSize = std::uint32_t{1} << 20U;
constexpr CaptureVariant kVariant = CaptureVariant::nanoLittle;

/// Writes a capture whose frames lie between records of zeros that are not written.
class SparseCapture {
public:
    explicit SparseCapture(std::string const& path) : file_(path, std::ios::binary) {
        put(captureHeader(kVariant));
    }

    void addFrame(Timest const& time, Bytes const& frame) {
        addHeader(time, static_cast<std::uint32_t>(frame.size()));
        put(frame);
    }

    /// Records of zeros, of a size that can be read at once, up to a position.
    void addZerosUntil(std::uint64_t end) {
        while (position_ < end) {
            std::uint64_t const left = end - position_ - recordHeaderSize;
            // What is left behind this one must hold a header at least.
            auto const size =
                static_cast<std::uint32_t>(left < 2 * kHoleSize ? left : std::uint64_t{kHoleSize});
            addHeader({}, size);
            position_ += size;
        }
    }

    /// @return whether everything was written
    [[nodiscard]] bool close() {
        file_.close();
        return !file_.fail();
    }

    [[nodiscard]] std::uint64_t position() const { return position_; }

private:
    void addHeader(Timest const& time, std::uint32_t size) {
        auto const header = recordHeader(kVariant, time.seconds, time.nanoseconds, size, size);
        put(Bytes(header.begin(), header.end()));
    }
    void put(Bytes const& octets) {
        file_.seekp(static_cast<std::streamoff>(position_));
        file_.write(reinterpret_cast<char const*>(octets.data()),
                    static_cast<std::streamsize>(octets.size()));
        position_ += octets.size();
    }

    std::ofstream file_;
    std::uint64_t position_ = 0;
};

/// Its frames in pairs of a GOOSE and an SV frame, numbered from 0: two pairs at the start of the
/// file, one whose GOOSE frame begins below 4 GiB and ends after, two at the end.
class HugeCapture : public testing::Test {
protected:
    static constexpr std::uint16_t kPairs = 5;
    static constexpr std::uint16_t kStraddling = 2;

    void SetUp() override {
        SparseCapture capture(path());
        addPair(capture);
        addPair(capture);
        capture.addZerosUntil(kFourGib - recordHeaderSize - 10);
        addPair(capture);
        addPair(capture);
        capture.addZerosUntil(kFourGib + 20 * std::uint64_t{kHoleSize});
        addPair(capture);
        if (!capture.close()) GTEST_SKIP() << "no file of more than 4 GiB can be made";
        struct stat status = {};
        ASSERT_EQ(::stat(path().c_str(), &status), 0);
        if (status.st_blocks * 512 > std::int64_t{64} << 20)
            GTEST_SKIP() << "the system keeps holes as zeros";
        std::atomic<bool> const stop = false;
        PcapParser::parseFile(path(), db_, {}, stop, [this](double fraction) {
            EXPECT_LE(lastFraction_, fraction);
            lastFraction_ = fraction;
        });
    }

    [[nodiscard]] std::string const& path() const { return file_.path(); }
    [[nodiscard]] Goose const& goose() const { return *db_.gooseProto.streams.begin(); }
    [[nodiscard]] Sv const& sv() const { return *db_.svProto.streams.begin(); }
    [[nodiscard]] double lastFraction() const { return lastFraction_; }

    /// Where the packets are that were written, and when.
    [[nodiscard]] std::deque<Package> const& gooses() const { return gooses_; }
    [[nodiscard]] std::deque<Package> const& svs() const { return svs_; }

private:
    static GooseMessage gooseOf(std::uint16_t number) {
        GooseMessage message;
        message.stNum = number + 1U;
        message.sqNum = {1000U + number, 2};
        message.allData = dataBoolean(number % 2 == 0);
        return message;
    }

    void addPair(SparseCapture& capture) {
        auto const number = static_cast<std::uint16_t>(gooses_.size());
        Timest time{.seconds = 1'710'928'800U + number, .nanoseconds = 999'999'999};
        Ethernet const link = {};
        gooses_.push_back(
            {.time = time,
             .position = capture.position() + recordHeaderSize + payloadOffset(link) + 8});
        capture.addFrame(time, gooseFrame(link, gooseOf(number)));
        SvMessage const message = message92le("MU01", number, {{-number, number}});
        time = {.seconds = time.seconds + 1, .nanoseconds = 0};
        svs_.push_back({.time = time,
                        .position = capture.position() + recordHeaderSize +
                                    payloadOffset(svEthernet()) + 8 + sequenceOffset(message)});
        capture.addFrame(time, svFrame(svEthernet(), message));
    }

    ScratchFile file_;
    std::deque<Package> gooses_;
    std::deque<Package> svs_;
    Db db_;
    double lastFraction_ = 0;
};

template <typename Packets>
std::vector<std::uint64_t> positionsOf(Packets const& packets) {
    std::vector<std::uint64_t> positions;
    for (Package const* package : packets) positions.push_back(package->position);
    return positions;
}

// One test: the file is read as a whole.
TEST_F(HugeCapture, IsIndexedAskedAndDecodedBeyondFourGib) {
    EXPECT_EQ(lastFraction(), 1.0);
    ASSERT_LT(gooses()[kStraddling].position - payloadOffset({}) - 8, kFourGib);
    ASSERT_GT(gooses()[kStraddling].position, kFourGib);
    ASSERT_EQ(goose().files.size(), 1U);
    ASSERT_EQ(sv().files.size(), 1U);
    PackageFile const& gooseFile = *goose().files.begin();
    PackageFile const& svFile = *sv().files.begin();
    EXPECT_EQ(gooseFile.packages, gooses());
    EXPECT_EQ(svFile.packages, svs());

    Timest const from = gooses()[kStraddling + 1U].time;
    Timest const to = svs().back().time;
    auto const gooseWindow = goose().getfilteredPackages(from, to).at(&gooseFile);
    EXPECT_EQ(positionsOf(gooseWindow.packages),
              (std::vector{gooses()[3].position, gooses()[4].position}));
    EXPECT_EQ(gooseWindow.previousPackage->position, gooses()[kStraddling].position);
    EXPECT_EQ(gooseWindow.nextPackage, nullptr);
    EXPECT_EQ(positionsOf(sv().getfilteredPackages(from, to).at(&svFile)),
              (std::vector{svs()[3].position, svs()[4].position}));
    EXPECT_EQ(sv().findFileNearestPackageIterator(&svFile, to)->position, svs()[3].position);

    for (std::uint16_t number = 0; number < kPairs; ++number) {
        GoosePdu const pdu =
            GooseParser::parseGoosePDUFromFile(path(), gooseFile.packages[number].position);
        EXPECT_EQ(pdu.stNum, std::to_string(number + 1));
        EXPECT_EQ(pdu.sqNum, std::to_string(1000 + number));
        EXPECT_EQ(GooseParser::parseBooleanValues(pdu.allData),
                  std::vector{number % 2 == 0 ? 1.0F : 0.0F});
        auto const asdus = SvParser::parseASDUFromFile(path(), svFile.packages[number].position);
        ASSERT_EQ(asdus.size(), 1U);
        EXPECT_EQ(asdus.front().smpCnt, number);
        EXPECT_EQ(asdus.front().samples.front().value, -number);
    }
}

}  // namespace
}  // namespace TalTest::HugeCaptureTest
