#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <algorithm>
#include <cstdint>
#include <exception>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "capture/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/Sanitized.hpp"

// Captures that are cut short or claim what they do not hold, and paths that are no captures.

namespace TalTest::PcapParserDamageTest {
namespace {

using namespace TalIec61850Parser;

constexpr std::uint32_t kMebibyte = 1U << 20U;
constexpr std::uint32_t kPaddingLimit = 16 * kMebibyte;

void expectNothing(Indexed const& result, std::string const& message) {
    EXPECT_EQ(result.errors, message);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(isEmpty(result.db));
    EXPECT_TRUE(result.progress.empty());
}

/// A pipe with a name, and an end of it that can be written to.
class NamedPipe {
public:
    NamedPipe() : path_(directory_.file("pipe")) {
        if (mkfifo(path_.c_str(), 0600) != 0) throw std::runtime_error("mkfifo " + path_);
    }
    NamedPipe(NamedPipe const&) = delete;
    NamedPipe& operator=(NamedPipe const&) = delete;
    ~NamedPipe() {
        if (writer_ >= 0) close(writer_);
    }

    /// Puts a capture into the pipe and keeps it open.
    void fill(Bytes const& content) {
        writer_ = open(path_.c_str(), O_RDWR | O_CLOEXEC);
        if (write(writer_, content.data(), content.size()) !=
            static_cast<ssize_t>(content.size())) {
            throw std::runtime_error("write " + path_);
        }
    }

    [[nodiscard]] std::string const& path() const { return path_; }

private:
    TempDir directory_;
    std::string path_;
    int writer_ = -1;
};

TEST(PcapParserPath, ThatDoesNotExistIsReported) {
    TempDir const directory;
    std::string const path = directory.file("missing.pcap");
    expectNothing(indexFile(path), "Error opening file: " + path + "\n");
}

TEST(PcapParserPath, ThatIsEmptyIsReported) {
    expectNothing(indexFile(""), "Error opening file: \n");
}

TEST(PcapParserPath, ThatLeadsThroughAFileIsReported) {
    TempFile const file(captureHeader(CaptureVariant::microLittle));
    std::string const path = file.path() + "/capture.pcap";
    expectNothing(indexFile(path), "Error opening file: " + path + "\n");
}

TEST(PcapParserPath, IsReportedOctetForOctet) {
    std::string const path = "/no such place/%s\t\xC3\xA4.pcap";
    expectNothing(indexFile(path), "Error opening file: " + path + "\n");
}

TEST(PcapParserPath, OfADirectoryIsNoCapture) {
    TempDir const directory;
    expectNothing(indexFile(directory.path()), "Invalid PCAP file format\n");
}

TEST(PcapParserPath, OfAPipeWithoutAWriterIsNoCapture) {
    NamedPipe const pipe;
    expectNothing(indexFile(pipe.path()), "Invalid PCAP file format\n");
}

TEST(PcapParserPath, OfAPipeIsNoCaptureWhateverItHolds) {
    NamedPipe pipe;
    pipe.fill(CaptureBuilder().add(1, 0, gooseFrame({}, {})).bytes());
    expectNothing(indexFile(pipe.path()), "Invalid PCAP file format\n");
}

TEST(PcapParserPath, OfAnIdleDeviceIsNoCapture) {
    expectNothing(indexFile("/dev/null"), "Invalid PCAP file format\n");
}

/// A capture of one record that claims a whole frame and holds the first `size` octets of it.
Bytes cutFrame(Bytes const& frame, std::size_t size) {
    return CaptureBuilder(CaptureVariant::nanoBig)
        .addClaiming(7, 8, static_cast<std::uint32_t>(frame.size()), prefix(frame, size))
        .bytes();
}

TEST(PcapParserCutRecord, FrameIsCompletedWithZeros) {
    // The content of goID begins in the frame and ends after the end of the file.
    GooseMessage message;
    message.goID = "NAME";
    Bytes const frame = gooseFrame({}, message);
    std::size_t const goID = find(frame, ber(0x83, "NAME")).value();
    Indexed const result = indexCapture(cutFrame(frame, goID + 4));
    Goose const& goose = only(result.db.gooseProto.streams);
    EXPECT_EQ(goose.gocbRef, message.gocbRef);
    EXPECT_EQ(goose.datSet, message.datSet);
    EXPECT_EQ(goose.goID, "[4E 41 00 00]");
    EXPECT_FALSE(goose.simulation.has_value());
    EXPECT_FALSE(goose.confRev.has_value());
    EXPECT_EQ(packagesOf(goose).front(), (Package{{7, 8}, 24 + 16 + 14 + 8}));
    EXPECT_EQ(result.progress.back(), 1.0);
    EXPECT_EQ(result.errors, "");
}

TEST(PcapParserCutRecord, EveryCutGivesWhatZerosWouldGive) {
    for (Bytes const& frame : {gooseFrame(Ethernet().withVlan(5), {}),
                               svFrame(svEthernet().withHsr('B').withPrp('B'), {})}) {
        for (std::size_t size = 0; size < frame.size(); ++size) {
            Bytes zeroed = prefix(frame, size);
            zeroed.resize(frame.size());
            Indexed const cut = indexCapture(cutFrame(frame, size));
            Indexed const whole = indexCapture(cutFrame(zeroed, zeroed.size()));
            EXPECT_EQ(streamLines(cut.db), streamLines(whole.db)) << "cut to " << size;
            EXPECT_EQ(packetLines(cut.db), packetLines(whole.db)) << "cut to " << size;
        }
    }
}

TEST(PcapParserCutRecord, RecordHeaderCutShortHoldsNothing) {
    Bytes const capture = cutFrame(gooseFrame({}, {}), 0);
    for (std::size_t size = captureHeaderSize + 1; size <= capture.size(); ++size) {
        Indexed const result = indexCapture(prefix(capture, size));
        EXPECT_TRUE(isEmpty(result.db)) << size;
        EXPECT_EQ(result.progress, (std::vector<double>{24.0 / static_cast<double>(size), 1.0}));
        EXPECT_EQ(result.errors, "");
    }
}

TEST(PcapParserCutRecord, RecordsBeforeItStay) {
    Bytes const frame = gooseFrame({}, {});
    CaptureBuilder capture;
    capture.add(1, 0, frame).add(2, 0, frame).addClaiming(3, 0, 0x7FFFFFFF, frame);
    Indexed const result = indexCapture(capture.bytes());
    EXPECT_EQ(packagesOf(only(result.db.gooseProto.streams)).size(), 3U);
}

/// A capture whose only record claims `missing` octets more than it holds, all of them, and one
/// octet, content of a goosePdu.
Bytes pduThatMisses(std::uint32_t missing) {
    Bytes const pdu = berClaiming(0x61, concat({{0x84}, bigEndian(missing + 1U, 4)}), {0x00});
    Bytes const frame = ethernetFrame({}, etherTypeGoose, apdu({}, pdu));
    auto const size = static_cast<std::uint32_t>(frame.size());
    return CaptureBuilder(CaptureVariant::nanoLittle)
        .addClaiming(3, 4, size + missing, frame)
        .bytes();
}

TEST(PcapParserCutRecord, SixteenMebibytesOfZerosComplete) {
    for (std::uint32_t const missing : {kMebibyte, kPaddingLimit - 1, kPaddingLimit}) {
        Indexed const result = indexCapture(pduThatMisses(missing));
        EXPECT_EQ(packagesOf(only(result.db.gooseProto.streams)).front(),
                  (Package{{3, 4}, 24 + 16 + 14 + 8}))
            << missing << " octets missing";
    }
}

TEST(PcapParserCutRecord, MoreThanSixteenMebibytesOfZerosAreNotMadeUp) {
    for (std::uint32_t const missing : {kPaddingLimit + 1, 0x7FFFFFFFU, 0xFFFFFF00U}) {
        Indexed const result = indexCapture(pduThatMisses(missing));
        // The goosePdu does not fit any more: the frame is indexed without a place.
        EXPECT_EQ(packagesOf(only(result.db.gooseProto.streams)).front(), Package{})
            << missing << " octets missing";
        EXPECT_EQ(result.progress.back(), 1.0);
    }
}

/// Whether `action` succeeds in a process of its own that may use `allowance` octets of address
/// space beyond what this one uses.
bool succeedsWithin(std::size_t allowance, std::function<bool()> const& action) {
    pid_t const child = fork();
    if (child == 0) {
        bool success = false;
        try {
            std::size_t pages = 0;
            std::ifstream("/proc/self/statm") >> pages;
            auto const pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
            rlimit limit{};
            getrlimit(RLIMIT_AS, &limit);
            limit.rlim_cur = pages * pageSize + allowance;
            success = pages > 0 && setrlimit(RLIMIT_AS, &limit) == 0 && action();
        } catch (std::exception const&) {
            success = false;
        }
        _exit(success ? 0 : 1);
    }
    int status = -1;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

TEST(PcapParserClaim, OfGigabytesTakesNoMemory) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer needs the address space itself";
    for (std::uint32_t const claim : {0xFFFFFFFFU, 0x80000000U, 0x7FFFFFFFU, 65 * kMebibyte}) {
        for (CaptureVariant const variant : captureVariants) {
            Bytes capture =
                CaptureBuilder(variant).addClaiming(1, 2, claim, gooseFrame({}, {})).bytes();
            capture.resize(100);
            TempFile const file(capture);
            EXPECT_TRUE(succeedsWithin(
                64 * kMebibyte,
                [&] {
                    return indexFile(file.path()).progress == std::vector<double>{0.24, 1.0};
                }))
                << name(variant) << " with a claim of " << claim;
        }
    }
}

TEST(PcapParserClaim, OfGigabytesIsIndexedWithWhatIsThere) {
    Bytes const frame = gooseFrame({}, {});
    for (std::uint32_t const claim : {0xFFFFFFFFU, 0xFFFFFFF0U, 0x80000000U, 0x10000000U}) {
        CaptureBuilder capture;
        Indexed const result = indexCapture(capture.addClaiming(1, 0, claim, frame).bytes());
        Indexed const expected = indexCapture(CaptureBuilder().add(1, 0, frame).bytes());
        EXPECT_EQ(packetLines(result.db), packetLines(expected.db)) << claim;
    }
}

TEST(PcapParserPrefix, OfACaptureIndexesToAPrefix) {
    std::vector<Bytes> const frames = {
        gooseFrame({}, {}),
        svFrame(svEthernet(), {}),
        gooseFrame(Ethernet().withVlan(5), {}),
        svFrame(svEthernet().withHsr('B'), {}),
        ethernetFrame({}, 0x0800, repeat(0x45, 20)),
        gooseFrame(Ethernet().withPrp('B'), {}),
    };
    CaptureBuilder capture;
    std::vector<std::size_t> ends = {capture.bytes().size()};
    for (Bytes const& frame : frames) {
        capture.add(1, 0, frame);
        ends.push_back(capture.bytes().size());
    }
    TempDir const directory;
    std::vector<std::string> whole;
    for (std::size_t size = 0; size <= capture.bytes().size(); ++size) {
        SCOPED_TRACE("prefix of " + std::to_string(size) + " octets");
        Indexed const result =
            indexFile(directory.write("prefix.pcap", prefix(capture.bytes(), size)));
        EXPECT_EQ(result.errors, size < 4 ? "Invalid PCAP file format\n" : "");
        EXPECT_EQ(result.progress.empty(), size < 4);
        std::vector<std::string> const lines = packetLines(result.db);
        EXPECT_TRUE(std::includes(lines.begin(), lines.end(), whole.begin(), whole.end()));
        EXPECT_LE(lines.size(), whole.size() + 1);
        if (std::find(ends.begin(), ends.end(), size) != ends.end()) whole = lines;
    }
    EXPECT_EQ(whole.size(), frames.size() - 1);
}

}  // namespace
}  // namespace TalTest::PcapParserDamageTest
