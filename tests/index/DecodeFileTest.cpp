// How a packet's PDU is found in its capture file, which may have become another since it was
// indexed. The same for both protocols.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "goose/GoosePduText.hpp"
#include "index/Indexing.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"
#include "sv/AsduText.hpp"

namespace TalTest::DecodeFileTest {
namespace {

using namespace TalIec61850Parser;

struct Protocol {
    std::string name;
    std::uint8_t tag = 0;
    /// What the element holds, and what it decodes to.
    Bytes content;
    std::string decoded;
    std::string (*decode)(std::string const& path, std::uint64_t position) = nullptr;
    Bytes frame;
};

void PrintTo(Protocol const& protocol, std::ostream* out) { *out << protocol.name; }

Protocol const goose = {"Goose",
                        0x61,
                        ber(0x83, "I"),
                        "goID = I\n",
                        [](std::string const& path, std::uint64_t position) {
                            return textOf(GooseParser::parseGoosePDUFromFile(path, position));
                        },
                        gooseFrame({}, {})};

Protocol const sampledValues = {
    "SampledValues",
    0xA2,
    ber(0x30, ber(0x80, "I")),
    "svID 'I' datSet '' smpCnt 0 confRev 0 refrTm smpSynch 0 smpRate 0 samples\n",
    [](std::string const& path, std::uint64_t position) {
        return textOf(SvParser::parseASDUFromFile(path, position));
    },
    svFrame(svEthernet(), {})};

class DecodeFile : public testing::TestWithParam<Protocol> {
protected:
    [[nodiscard]] std::string decode(std::string const& path, std::uint64_t position = 0) const {
        return protocol.decode(path, position);
    }

    [[nodiscard]] std::string decode(Bytes const& content, std::uint64_t position = 0) {
        file.assign(content);
        return decode(file.path(), position);
    }

    /// The only packet of a capture.
    [[nodiscard]] static std::uint64_t positionIn(std::string const& path) {
        Db db;
        indexInto(db, path);
        auto const packets = packetsByPosition(db);
        if (packets.size() != 1) throw std::logic_error("not one packet");
        return packets.begin()->first;
    }

    Protocol const& protocol = GetParam();
    Bytes const element = ber(protocol.tag, protocol.content);
    Bytes const capture = CaptureBuilder().add(1, 0, protocol.frame).bytes();
    ScratchFile file;
};

INSTANTIATE_TEST_SUITE_P(Protocols, DecodeFile, testing::Values(goose, sampledValues),
                         [](auto const& instance) { return instance.param.name; });

TEST_P(DecodeFile, FindsTheElementWhereverItStands) {
    for (std::size_t const before : {0UL, 1UL, 2UL, 23UL, 62UL, 511UL, 4095UL, 8191UL, 70'000UL}) {
        EXPECT_EQ(decode(concat({Bytes(before), element}), before), protocol.decoded)
            << "at the end";
        EXPECT_EQ(decode(concat({Bytes(before), element, Bytes(100, 0xFF)}), before),
                  protocol.decoded);
    }
}

TEST_P(DecodeFile, UnderstandsThreeLengthForms) {
    for (LengthForm const form :
         {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets}) {
        EXPECT_EQ(decode(ber(protocol.tag, protocol.content, form)), protocol.decoded);
        EXPECT_EQ(decode(ber(protocol.tag, {}, form)), "") << "no content";
    }
    for (std::size_t const size : {126UL, 127UL, 128UL, 255UL, 256UL, 4096UL, 65'535UL}) {
        Bytes const content = concat({protocol.content, Bytes(size - protocol.content.size())});
        EXPECT_EQ(decode(ber(protocol.tag, content)), protocol.decoded) << size;
    }
}

TEST_P(DecodeFile, RefusesOtherLengthForms) {
    for (unsigned octet = 0x80; octet <= 0xFF; ++octet) {
        if (octet == 0x81 || octet == 0x82) continue;
        Bytes octets = {protocol.tag, static_cast<std::uint8_t>(octet)};
        std::size_t const count = octet & 0x7FU;
        append(octets, bigEndian(protocol.content.size(), count));
        EXPECT_EQ(decode(concat({octets, protocol.content})), "") << octet;
        EXPECT_EQ(decode(concat({octets, protocol.content, Bytes(300)})), "") << octet;
    }
    Bytes const large = concat({protocol.content, Bytes(256 - protocol.content.size())});
    EXPECT_EQ(decode(ber(protocol.tag, large, LengthForm::threeOctets)), "");
    EXPECT_EQ(decode(ber(protocol.tag, large, LengthForm::twoOctets)), protocol.decoded);
}

TEST_P(DecodeFile, RefusesAFileThatEndsInTheElement) {
    for (LengthForm const form :
         {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets}) {
        Bytes const whole = ber(protocol.tag, protocol.content, form);
        for (std::size_t const before : {0UL, 40UL}) {
            for (std::size_t size = 0; size < whole.size(); ++size)
                EXPECT_EQ(decode(concat({Bytes(before), prefix(whole, size)}), before), "") << size;
            EXPECT_EQ(decode(concat({Bytes(before), whole}), before), protocol.decoded);
        }
    }
    EXPECT_EQ(decode(concat({{protocol.tag, 0x82, 0xFF, 0xFF}, protocol.content, Bytes(60'000)})),
              "");
}

TEST_P(DecodeFile, RefusesAnyOtherTag) {
    for (unsigned tag = 0; tag <= 0xFF; ++tag) {
        auto const octet = static_cast<std::uint8_t>(tag);
        EXPECT_EQ(decode(ber(octet, protocol.content)),
                  octet == protocol.tag ? protocol.decoded : "")
            << tag;
    }
}

TEST_P(DecodeFile, RefusesPositionsBesideTheElement) {
    TempFile const recorded(capture);
    std::uint64_t const position = positionIn(recorded.path());
    EXPECT_NE(decode(recorded.path(), position), "");
    for (std::uint64_t other = 0; other < capture.size() + 10; ++other) {
        if (capture.size() > other && capture[other] == protocol.tag) continue;
        EXPECT_EQ(decode(recorded.path(), other), "") << other;
    }
}

TEST_P(DecodeFile, RefusesPositionsBeyondTheEnd) {
    file.assign(element);
    std::uint64_t const beyond32 = std::uint64_t{1} << 32U;
    std::uint64_t const beyond63 = std::uint64_t{1} << 63U;
    EXPECT_EQ(decode(file.path(), 0), protocol.decoded);
    for (std::uint64_t const position :
         {element.size() - 1, element.size(), element.size() + 1, std::size_t{1'000'000},
          beyond32 - 1, beyond32, beyond32 + 1, beyond63 - 1, beyond63, beyond63 + 1,
          UINT64_MAX - element.size() + 1, UINT64_MAX - 1, UINT64_MAX})
        EXPECT_EQ(decode(file.path(), position), "") << position;
}

TEST_P(DecodeFile, ReachesBeyondFourGigaoctets) {
    TempDir const folder;
    std::string const path = folder.file("large.pcap");
    for (std::uint64_t const position :
         {(std::uint64_t{1} << 31U) + 5, (std::uint64_t{1} << 32U) + 5}) {
        std::ofstream out(path, std::ios::binary);
        out.seekp(static_cast<std::streamoff>(position));
        std::copy(element.begin(), element.end(), std::ostreambuf_iterator<char>(out));
        out.close();
        if (!out) GTEST_SKIP() << "no sparse files here";
        EXPECT_EQ(decode(path, position), protocol.decoded);
        EXPECT_EQ(decode(path, 5), "");
    }
}

TEST_P(DecodeFile, RefusesThePacketsOfTheOtherProtocol) {
    Protocol const& other = protocol.tag == goose.tag ? sampledValues : goose;
    TempFile const recorded(CaptureBuilder().add(1, 0, other.frame).bytes());
    std::uint64_t const position = positionIn(recorded.path());
    EXPECT_NE(other.decode(recorded.path(), position), "");
    EXPECT_EQ(decode(recorded.path(), position), "");
}

TEST_P(DecodeFile, RefusesWhatIsNoFile) {
    TempDir const folder;
    for (std::uint64_t const position : {std::uint64_t{0}, std::uint64_t{62}, UINT64_MAX}) {
        EXPECT_EQ(decode(folder.file("missing.pcap"), position), "");
        EXPECT_EQ(decode("", position), "");
        EXPECT_EQ(decode(folder.path(), position), "") << "a directory";
        EXPECT_EQ(decode("/dev/null", position), "");
        EXPECT_EQ(decode(folder.write("empty.pcap", {}), position), "");
        EXPECT_EQ(decode(folder.write("file", element) + "/below", position), "");
    }
}

TEST_P(DecodeFile, DoesNotWaitForAPipe) {
    TempDir const folder;
    std::string const path = folder.file("pipe.pcap");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(decode(path, 0), "") << "nobody writes";
    int const writer = open(path.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(writer, 0);
    EXPECT_EQ(decode(path, 0), "") << "nothing is written";
    EXPECT_EQ(write(writer, element.data(), element.size()), static_cast<ssize_t>(element.size()));
    EXPECT_EQ(decode(path, 0), "") << "a pipe has no positions";
    close(writer);
}

TEST_P(DecodeFile, FollowsLinksAndOddNames) {
    TempDir const folder;
    std::string const path = folder.write("a \n\xFF%s.pcap", element);
    EXPECT_EQ(decode(path), protocol.decoded);
    std::filesystem::create_symlink(path, folder.file("link.pcap"));
    EXPECT_EQ(decode(folder.file("link.pcap")), protocol.decoded);
    std::filesystem::create_symlink(folder.file("gone"), folder.file("dangling.pcap"));
    EXPECT_EQ(decode(folder.file("dangling.pcap")), "");
}

TEST_P(DecodeFile, ReadsTheFileAsItIsNow) {
    TempDir const folder;
    std::string const path = folder.write("capture.pcap", capture);
    std::uint64_t const position = positionIn(path);
    std::string const decoded = decode(path, position);
    EXPECT_NE(decoded, "");

    std::filesystem::resize_file(path, capture.size() + 10'000);
    EXPECT_EQ(decode(path, position), decoded) << "grew";
    std::filesystem::resize_file(path, capture.size() - 1);
    EXPECT_EQ(decode(path, position), "") << "was cut";
    std::filesystem::resize_file(path, position);
    EXPECT_EQ(decode(path, position), "") << "was cut before the element";
    folder.write("capture.pcap", Bytes(capture.size()));
    EXPECT_EQ(decode(path, position), "") << "was overwritten";
    folder.write("capture.pcap", concat({Bytes(position), element}));
    EXPECT_EQ(decode(path, position), protocol.decoded) << "was replaced";
    std::filesystem::remove(path);
    EXPECT_EQ(decode(path, position), "") << "vanished";
    std::filesystem::create_directory(path);
    EXPECT_EQ(decode(path, position), "") << "is a directory";
}

TEST_P(DecodeFile, LeavesTheFileAlone) {
    TempFile const recorded(capture);
    std::uint64_t const position = positionIn(recorded.path());
    std::filesystem::permissions(recorded.path(), std::filesystem::perms::owner_read);
    EXPECT_NE(decode(recorded.path(), position), "");
    EXPECT_EQ(readFile(recorded.path()), capture);
    EXPECT_EQ(decode(recorded.path() + "x", position), "");
    EXPECT_FALSE(std::filesystem::exists(recorded.path() + "x"));
}

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

TEST_P(DecodeFile, LeavesNoFileOpen) {
    TempFile const whole(element);
    TempFile const cut(prefix(element, element.size() - 1));
    TempFile const refused(Bytes{protocol.tag, 0x83, 0, 0, 0});
    std::ptrdiff_t const before = openDescriptors();
    for (std::string const& path : {whole.path(), cut.path(), refused.path(), std::string("/tmp")})
        for (std::uint64_t const position : {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX})
            (void)decode(path, position);
    EXPECT_EQ(openDescriptors(), before);
}

TEST_P(DecodeFile, MayRunOnSeveralThreadsAtOnce) {
    TempFile const recorded(capture);
    std::uint64_t const position = positionIn(recorded.path());
    std::string const decoded = decode(recorded.path(), position);
    std::vector<int> agreeing(4);
    std::vector<std::thread> threads;
    for (int& count : agreeing)
        threads.emplace_back([&, this] {
            for (int i = 0; i < 200; ++i)
                if (decode(recorded.path(), position) == decoded) ++count;
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(agreeing, std::vector<int>(4, 200));
}

}  // namespace
}  // namespace TalTest::DecodeFileTest
