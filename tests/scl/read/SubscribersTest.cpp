#include <gtest/gtest.h>

#include <TalIec61850Scl/read/ReadStation.hpp>
#include <string>
#include <vector>

#include "scl/SclText.hpp"

namespace TalTest::SubscribersTest {
namespace {

using namespace TalIec61850Scl;
using TalTest::SclText;

std::string const kTrip =
    "<FCDA ldInst='LD0' lnClass='PTRC' lnInst='1' doName='Tr' daName='general' fc='ST'/>"
    "<FCDA ldInst='LD0' lnClass='PTRC' lnInst='1' doName='Str' fc='ST'/>";

/// IED1 sends the data set of kTrip; IED2 has these inputs in GGIO1.
SclText stationWith(std::string const& inputs, std::string const& iedNames = "") {
    SclText file;
    file.ieds =
        TalTest::iedText(
            "IED1", TalTest::node0Text("<DataSet name='ds1'>" + kTrip +
                                       "</DataSet><GSEControl name='gcb1' appID='id1' "
                                       "datSet='ds1' confRev='1'>" +
                                       iedNames + "</GSEControl><ReportControl name='rcb1'/>") +
                        TalTest::stationNodes()) +
        TalTest::iedText("IED2", "<LN lnClass='GGIO' inst='1' lnType='x'><Inputs>\n" + inputs +
                                     "</Inputs></LN>");
    file.templates = TalTest::stationTypes();
    return file;
}

std::vector<Subscriber> subscribersOf(std::string const& inputs, std::string const& iedNames = "") {
    auto const station = readStation(stationWith(inputs, iedNames).text(), "");
    EXPECT_TRUE(station.diagnostics.empty());
    return station.controlBlocks.at(0).subscribers;
}

TEST(SclSubscribers, NameTheControlBlockAndTheValueThatTheyTake) {
    auto const subscribers = subscribersOf(
        "<ExtRef iedName='IED1' ldInst='LD0' lnClass='PTRC' lnInst='1' doName='Str' daName='q' "
        "intAddr='in/7' serviceType='GOOSE' srcLDInst='LD0' srcLNClass='LLN0' srcCBName='gcb1'/>");
    ASSERT_EQ(subscribers.size(), 1U);
    EXPECT_EQ(subscribers[0], (Subscriber{.ied = "IED2",
                                          .node = "LD0/GGIO1",
                                          .intAddr = "in/7",
                                          .member = 3,
                                          .source = SubscriptionSource::controlBlock,
                                          .place = subscribers[0].place}));
    EXPECT_GT(subscribers[0].place.line, 0U);
}

TEST(SclSubscribers, MayLeaveOutWhatIsTheSameAsTheData) {
    EXPECT_EQ(subscribersOf("<ExtRef iedName='IED1' ldInst='LD0' lnClass='PTRC' lnInst='1' "
                            "doName='Tr' daName='general' srcCBName='gcb1'/>")
                  .size(),
              1U);
}

TEST(SclSubscribers, MayTakeTheMessageAsAWholeOrAnObject) {
    auto const whole = subscribersOf("<ExtRef iedName='IED1' srcLDInst='LD0' srcCBName='gcb1'/>");
    ASSERT_EQ(whole.size(), 1U);
    EXPECT_FALSE(whole[0].member);
    auto const object = subscribersOf(
        "<ExtRef iedName='IED1' ldInst='LD0' lnClass='PTRC' lnInst='1' doName='Str' "
        "srcCBName='gcb1'/>");
    ASSERT_EQ(object.size(), 1U);
    EXPECT_EQ(object[0].member, 1U);
}

/// IED1 sends a nested object and an array; IED2 has this input.
std::vector<Subscriber> subscribersOfNested(std::string const& reference) {
    SclText file = stationWith("<ExtRef iedName='IED1' ldInst='LD0' " + reference + "/>");
    file.ieds.replace(
        file.ieds.find(kTrip), kTrip.size(),
        "<FCDA ldInst='LD0' lnClass='MMXU' lnInst='1' doName='A' fc='MX'/>"
        "<FCDA ldInst='LD0' lnClass='MHAI' lnInst='1' doName='HA' daName='phsAHar' fc='MX'/>");
    auto const station = readStation(file.text(), "");
    EXPECT_TRUE(station.diagnostics.empty());
    return station.controlBlocks.at(0).subscribers;
}

TEST(SclSubscribers, TakeTheFirstValueOfWhatIsBetweenAnEntryAndItsValues) {
    std::string const power = "lnClass='MMXU' lnInst='1' ";
    std::string const harmonics = "lnClass='MHAI' lnInst='1' ";
    struct Case {
        std::string reference;
        std::size_t member;
    };
    for (auto const& [reference, member] :
         {Case{power + "doName='A'", 0}, Case{power + "doName='A.phsB'", 5},
          Case{power + "doName='A' daName='phsB.cVal.ang'", 7},
          Case{power + "doName='A.phsB' daName='q'", 8}, Case{harmonics + "doName='HA'", 10},
          Case{harmonics + "doName='HA.phsAHar'", 10},
          Case{harmonics + "doName='HA.phsAHar(1)' daName='cVal'", 15}}) {
        for (std::string const name : {"", " srcCBName='gcb1'"}) {
            auto const subscribers = subscribersOfNested(reference + name);
            ASSERT_EQ(subscribers.size(), 1U) << reference << name;
            EXPECT_EQ(subscribers[0].member, member) << reference << name;
        }
    }
    // What only begins alike is something else.
    auto const other = subscribersOfNested(power + "doName='A.phs' srcCBName='gcb1'");
    ASSERT_EQ(other.size(), 1U);
    EXPECT_FALSE(other[0].member);
}

TEST(SclSubscribers, OfTheFirstEditionAreFoundByTheData) {
    auto const subscribers = subscribersOf(
        "<ExtRef iedName='IED1' ldInst='LD0' lnClass='PTRC' lnInst='1' doName='Tr' "
        "daName='general'/><ExtRef iedName='IED1' ldInst='LD0' lnClass='PTRC' lnInst='1' "
        "doName='Op' daName='general'/>");
    ASSERT_EQ(subscribers.size(), 1U);
    EXPECT_EQ(subscribers[0].source, SubscriptionSource::data);
    EXPECT_EQ(subscribers[0].member, 0U);
}

TEST(SclSubscribers, AreReadWhereverTheirLogicalNodeHasThem) {
    std::string const inputs =
        "<Inputs><ExtRef iedName='IED1' srcLDInst='LD0' srcCBName='gcb1'/></Inputs>";
    std::string const instance = "<DOI name='Ind1'><DAI name='d'/></DOI>";
    std::string const log = "<Log name='l'/>";
    for (std::string const& inside :
         {inputs + instance, instance + inputs + log, instance + inputs + instance,
          "<Private/>" + instance + instance + inputs + instance + log}) {
        for (std::string const node :
             {"LN0 lnClass='LLN0' inst=''", "LN lnClass='GGIO' inst='1'"}) {
            SclText file = stationWith("");
            std::string const kind = node.substr(0, node.find(' '));
            file.ieds += "<IED name='IED3'><AccessPoint name='A'><Server><LDevice inst='LD0'><";
            file.ieds += node;
            file.ieds += " lnType='x'>";
            file.ieds += inside;
            file.ieds += "</" + kind + "></LDevice></Server></AccessPoint></IED>";
            auto const station = readStation(file.text(), "");
            ASSERT_EQ(station.controlBlocks.at(0).subscribers.size(), 1U) << node << inside;
            EXPECT_EQ(station.controlBlocks[0].subscribers[0].ied, "IED3");
        }
    }
}

TEST(SclSubscribers, AreThoseOfLogicalNodesAlone) {
    SclText file = stationWith("");
    file.ieds +=
        "<IED name='IED3'><AccessPoint name='A'><LN lnClass='ITCI' inst='1' lnType='x'>"
        "<DOI name='Ind1'><Inputs><ExtRef iedName='IED1' srcLDInst='LD0' srcCBName='gcb1'/>"
        "</Inputs></DOI></LN></AccessPoint></IED>";
    EXPECT_TRUE(readStation(file.text(), "").controlBlocks.at(0).subscribers.empty());
}

TEST(SclSubscribers, MayBeOfTheSameIed) {
    SclText file = stationWith("");
    file.ieds = TalTest::iedText(
        "IED1", TalTest::node0Text("<GSEControl name='g' appID='i'/><Inputs><ExtRef iedName='@' "
                                   "ldInst='LD0' srcCBName='g'/></Inputs>"));
    auto const station = readStation(file.text(), "");
    ASSERT_EQ(station.controlBlocks.at(0).subscribers.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].subscribers[0].ied, "IED1");
    EXPECT_EQ(station.controlBlocks[0].subscribers[0].node, "LD0/LLN0");
}

TEST(SclSubscribers, MayBeNamedByThePublisher) {
    auto const subscribers = subscribersOf(
        "",
        "<IEDName> IED2 </IEDName><IEDName apRef='AP1' ldInst='LD0' prefix='Q' lnClass='GGIO' "
        "lnInst='3'>IED2</IEDName>");
    ASSERT_EQ(subscribers.size(), 2U);
    EXPECT_EQ(subscribers[0].ied, "IED2");
    EXPECT_EQ(subscribers[0].node, "");
    EXPECT_EQ(subscribers[0].source, SubscriptionSource::iedName);
    EXPECT_EQ(subscribers[1].node, "LD0/QGGIO3");
}

TEST(SclSubscribers, OfReportsAndOfNothingAreNone) {
    EXPECT_TRUE(subscribersOf("<ExtRef intAddr='later' pServT='GOOSE'/>"
                              "<ExtRef iedName='IED1' srcLDInst='LD0' srcCBName='rcb1'/>"
                              "<ExtRef iedName='IED1' serviceType='Report' srcCBName='nope'/>"
                              "<ExtRef iedName='IED1' serviceType='Poll' doName='x'/>")
                    .empty());
}

TEST(SclSubscribers, MayBeClientsWithoutAServer) {
    SclText file = stationWith("");
    file.ieds +=
        "<IED name='HMI'><AccessPoint name='A'><LN lnClass='ITCI' inst='1' lnType='x'><Inputs>"
        "<ExtRef iedName='IED1' srcLDInst='LD0' "
        "srcCBName='gcb1'/></Inputs></LN></AccessPoint></IED>";
    auto const station = readStation(file.text(), "");
    ASSERT_EQ(station.controlBlocks.at(0).subscribers.size(), 1U);
    EXPECT_EQ(station.controlBlocks[0].subscribers[0].node, "ITCI1");
}

TEST(SclSubscribers, OfControlBlocksOrDataThatNobodyHasAreTold) {
    auto const station = readStation(
        stationWith("<ExtRef iedName='IED1' srcLDInst='LD0' srcCBName='gcb9'/>\n"
                    "<ExtRef iedName='IED1' serviceType='GOOSE' ldInst='LD0' lnClass='PTRC' "
                    "lnInst='1' doName='Op' daName='general'/>\n"
                    "<ExtRef iedName='IED9' srcCBName='gcb1'/>\n"
                    "<ExtRef iedName='IED9' srcCBName='gcb2'/>\n"
                    "<ExtRef iedName='IED1' serviceType='SMV' srcLDInst='LD0' srcCBName='gcb1'/>\n",
                    "<IEDName>IED8</IEDName>")
            .text(),
        "");
    std::vector<std::string> told;
    for (Diagnostic const& each : station.diagnostics) {
        told.push_back(std::string(nameOf(each.code)) + " " + each.subject);
    }
    EXPECT_EQ(told, (std::vector<std::string>{
                        "MissingIed IED8", "MissingControlBlock IED1LD0/LLN0.gcb9",
                        "MissingControlBlock IED1LD0/PTRC1.Op.general", "MissingIed IED9",
                        "MissingControlBlock IED1LD0/LLN0.gcb1"}));
}

}  // namespace
}  // namespace TalTest::SubscribersTest
