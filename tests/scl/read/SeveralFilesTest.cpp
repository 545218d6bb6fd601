#include <gtest/gtest.h>

#include <TalIec61850Scl/read/ReadStation.hpp>
#include <cerrno>
#include <string>
#include <system_error>
#include <vector>

#include "scl/SclText.hpp"
#include "support/TempFile.hpp"

namespace TalTest::SeveralFilesTest {
namespace {

using namespace TalIec61850Scl;
using TalTest::SclText;

class SclFiles {
public:
    void add(std::string const& name, SclText const& file) {
        std::string const text = file.text();
        paths_.push_back(directory_.write(name, TalTest::Bytes(text.begin(), text.end())));
    }
    [[nodiscard]] StationDescription read() const { return readStation(paths_); }
    [[nodiscard]] std::vector<std::string> const& paths() const { return paths_; }

private:
    TalTest::TempDir directory_;
    std::vector<std::string> paths_;
};

std::string const kFcda =
    "<FCDA ldInst='LD0' lnClass='PTRC' lnInst='1' doName='Tr' daName='general' fc='ST'/>";

SclText publisher(std::string const& id = "id1") {
    SclText file;
    file.ieds = TalTest::iedText(
        "IED1",
        TalTest::node0Text("<DataSet name='ds1'>" + kFcda +
                           "</DataSet><GSEControl name='gcb1' datSet='ds1' appID='" + id + "'/>") +
            TalTest::stationNodes());
    file.templates = TalTest::stationTypes();
    return file;
}

SclText subscriber() {
    SclText file;
    file.ieds =
        TalTest::iedText("IED2",
                         "<LN lnClass='GGIO' inst='1' lnType='x'><Inputs><ExtRef iedName='IED1' "
                         "ldInst='LD0' lnClass='PTRC' lnInst='1' doName='Tr' daName='general' "
                         "srcCBName='gcb1' intAddr='a'/></Inputs></LN>");
    return file;
}

std::string const kAddress =
    "<SubNetwork name='N'><ConnectedAP iedName='IED1' apName='AP1'><GSE ldInst='LD0' cbName='gcb1'>"
    "<Address><P type='APPID'>0007</P></Address></GSE></ConnectedAP></SubNetwork>";

TEST(SclFilesTogether, JoinPublishersSubscribersAndAddresses) {
    SclFiles files;
    SclText addresses;
    addresses.communication = kAddress;
    files.add("2.cid", subscriber());
    files.add("1.cid", publisher());
    files.add("net.scd", addresses);
    auto const station = files.read();
    EXPECT_TRUE(station.diagnostics.empty());
    EXPECT_EQ(station.files, files.paths());
    EXPECT_EQ(station.ieds, (std::vector<std::string>{"IED2", "IED1"}));
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    ControlBlock const& block = station.controlBlocks[0];
    EXPECT_EQ(block.address.appId, 7);
    EXPECT_EQ(block.place.file, 1U);
    ASSERT_EQ(block.subscribers.size(), 1U);
    EXPECT_EQ(block.subscribers[0].member, 0U);
    EXPECT_EQ(block.subscribers[0].place.file, 0U);
}

TEST(SclFilesTogether, TellTheSameControlBlockAndSubscriberOnce) {
    SclFiles files;
    SclText station = publisher();
    station.communication = kAddress;
    station.ieds += subscriber().ieds;
    files.add("station.scd", station);
    files.add("1.cid", station);
    files.add("2.cid", subscriber());
    auto const read = files.read();
    EXPECT_TRUE(read.diagnostics.empty());
    ASSERT_EQ(read.controlBlocks.size(), 1U);
    EXPECT_EQ(read.dataSets.size(), 1U);
    EXPECT_EQ(read.controlBlocks[0].subscribers.size(), 1U);
}

TEST(SclFilesTogether, TellAControlBlockThatTheyHaveInTwoWays) {
    SclFiles files;
    files.add("new.scd", publisher("new"));
    files.add("old.scd", publisher("old"));
    auto const station = files.read();
    ASSERT_EQ(station.diagnostics.size(), 1U);
    EXPECT_EQ(station.diagnostics[0].code, DiagnosticCode::duplicateControlBlock);
    EXPECT_EQ(station.diagnostics[0].place.file, 1U);
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].id, "new");
}

TEST(SclFilesTogether, HaveTypesOfTheirOwn) {
    SclFiles files;
    SclText other = publisher();
    other.ieds.replace(other.ieds.find("IED1"), 4, "IED3");
    other.templates =
        "<LNodeType id='PTRC' lnClass='PTRC'><DO name='Tr' type='ACT'/></LNodeType>"
        "<DOType id='ACT'><DA name='general' bType='INT8' fc='ST'/></DOType>";
    files.add("1.scd", publisher());
    files.add("3.scd", other);
    auto const station = files.read();
    ASSERT_EQ(station.dataSets.size(), 2U);
    EXPECT_EQ(station.dataSets[0].members.at(0).bType, "BOOLEAN");
    EXPECT_EQ(station.dataSets[1].members.at(0).bType, "INT8");
}

TEST(SclFilesTogether, AreReadAlthoughOneIsNoDescription) {
    SclFiles files;
    files.add("1.scd", publisher());
    TalTest::TempFile const capture(TalTest::Bytes{0xD4, 0xC3, 0xB2, 0xA1, 2, 0, 4, 0});
    std::vector<std::string> const paths{capture.path(), files.paths()[0]};
    auto const station = readStation(paths);
    EXPECT_EQ(station.controlBlocks.size(), 1U);
    ASSERT_EQ(station.diagnostics.size(), 1U);
    EXPECT_EQ(station.diagnostics[0].code, DiagnosticCode::notXml);
}

TEST(SclFilesTogether, AreReadAlthoughOthersCannotBe) {
    SclFiles files;
    files.add("1.scd", publisher());
    TalTest::TempDir const directory;
    std::vector<std::string> const paths{directory.file("none.scd"), files.paths()[0],
                                         directory.path()};
    auto const station = readStation(paths);
    EXPECT_EQ(station.files, paths);
    ASSERT_EQ(station.controlBlocks.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].place.file, 1U);
    EXPECT_EQ(station.diagnostics, (std::vector<Diagnostic>{
                                       {.code = DiagnosticCode::unreadableFile,
                                        .place = {.file = 0, .line = 0},
                                        .subject = std::generic_category().message(ENOENT)},
                                       {.code = DiagnosticCode::unreadableFile,
                                        .place = {.file = 2, .line = 0},
                                        .subject = std::generic_category().message(EISDIR)},
                                   }));
}

}  // namespace
}  // namespace TalTest::SeveralFilesTest
