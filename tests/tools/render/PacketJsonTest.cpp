#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <string>

#include "analysis/packet/PacketFrames.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "tools/render/PacketJson.hpp"

namespace TalIec61850Tools::PacketJsonTest {
namespace {

using namespace TalIec61850Analysis;
using namespace TalTest;
using Json = nlohmann::ordered_json;

std::string jsonOf(Bytes const& element) { return toJson(onlyValue(element)).dump(); }

TEST(PacketJson, HasEveryFieldOfAGoosePacketInItsOrder) {
    GooseMessage message;
    message.t = utcTime(1'700'000'000, 0x800000, 0x8A);
    message.extraBeforeData = ber(0x8C, {0x01});
    message.trailing = {0x00, 0x0F};
    EXPECT_EQ(toJson(inspected(message)), Json::parse(R"({
        "protocol": "GOOSE",
        "header": {
            "destination": "01:0c:cd:01:00:01", "source": "02:00:00:00:00:01",
            "vlan": null, "hsr": null, "prp": null, "etherType": 35000,
            "appId": "0x0001", "length": 114, "reserved1": 0, "simulated": false, "reserved2": 0
        },
        "gocbRef": "RELAY1LD0/LLN0$GO$gcb1",
        "timeAllowedtoLive": 2000,
        "datSet": "RELAY1LD0/LLN0$dataSet1",
        "goID": "RELAY1_gcb1",
        "t": {
            "time": "2023-11-14T22:13:20.500000000Z", "seconds": 1700000000,
            "fraction": 8388608, "nanoseconds": 500000000, "leapSecondsKnown": true,
            "clockFailure": false, "clockNotSynchronized": false, "accuracy": 10
        },
        "stNum": 1,
        "sqNum": 0,
        "simulation": false,
        "confRev": 1,
        "ndsCom": false,
        "numDatSetEntries": 1,
        "allData": [{"type": "boolean", "value": false}],
        "others": [{"offset": 118, "tag": "8c", "octets": "01"}],
        "leadingOctets": "",
        "trailingOctets": "000f",
        "faults": []
    })"));
}

TEST(PacketJson, HasNullForWhatIsMissing) {
    Json const json = toJson(GoosePacket());
    for (auto const& [name, value] : json.items()) {
        if (name == "header") {
            for (auto const& [part, inside] : value.items()) EXPECT_TRUE(inside.is_null()) << part;
        } else if (name != "protocol") {
            EXPECT_TRUE(value.is_null() || value.empty() || value == "") << name;
        }
    }
    EXPECT_EQ(toJson(AsduContent()).at("smpSynchName"), Json());
    EXPECT_EQ(toJson(AsduContent()).size(), 13U);
}

TEST(PacketJson, HasTagsAndTrailer) {
    PlacedFrame const goose = richGoose();
    EXPECT_EQ(toJson(decodeGoose(goose.frame, goose.offset)).at("header").dump(),
              R"({"destination":"01:0c:cd:01:00:01","source":"02:00:00:00:00:01",)"
              R"("vlan":{"id":200,"priority":5,"dei":true},)"
              R"("hsr":{"lane":"B","path":1,"lsduSize":)" +
                  std::to_string(goose.frame.size() - 24) +
                  R"(,"sequence":77},"prp":{"lan":"B","lanId":11,"lsduSize":)" +
                  std::to_string(goose.frame.size() - 18) +
                  R"(,"sequence":99},"etherType":35000,"appId":"0x0001","length":)" +
                  std::to_string(goose.frame.size() - 30) +
                  R"(,"reserved1":32768,"simulated":true,"reserved2":32})");
}

TEST(PacketJson, HasEveryFieldOfAnSvPacketInItsOrder) {
    Asdu asdu;
    asdu.smpCnt = 3999;
    asdu.smpMod = 1;
    asdu.seqData = samples({{-7, 0x2803}});
    SvMessage message;
    message.asdus = {asdu};
    message.security = Bytes{0xAA};
    Json const json = toJson(inspected(message));
    EXPECT_EQ(json.at("header").at("etherType"), 35002);
    Json rest = json;
    rest.erase("header");
    EXPECT_EQ(rest, Json::parse(R"({
        "protocol": "SV",
        "noASDU": 1,
        "security": {"octets": "aa"},
        "asdus": [{
            "svID": "MU01", "datSet": null, "smpCnt": 3999, "confRev": 1, "refrTm": null,
            "smpSynch": 2, "smpSynchName": "global", "smpRate": null,
            "seqData": [{"value": -7, "quality": {
                "validity": "questionable", "overflow": false, "outOfRange": false,
                "badReference": false, "oscillatory": false, "failure": false, "oldData": false,
                "inconsistent": false, "inaccurate": false, "source": "process", "test": true,
                "operatorBlocked": false, "derived": true, "word": 10243}}],
            "smpMod": 1, "smpModName": "samplesPerSecond", "gmIdentity": null, "others": []
        }],
        "others": [],
        "leadingOctets": "",
        "trailingOctets": "",
        "faults": []
    })"));
}

TEST(PacketJson, NamesTheKindOfEveryValue) {
    std::string all;
    for (Bytes const& element : everyKind()) {
        Json json = toJson(onlyValue(element));
        json.erase("quality");
        if (json.at("type") == "utc-time") json.at("value") = json.at("value").at("time");
        if (json.at("type") == "structure") json.at("members") = json.at("members").size();
        all += json.dump() + "\n";
    }
    EXPECT_EQ(all, R"({"type":"boolean","value":true}
{"type":"bit-string","bits":"10","dbposReading":"on"}
{"type":"bit-string","bits":"1100000100001"}
{"type":"bit-string","bits":""}
{"type":"integer","value":-129}
{"type":"integer","value":-2147483648}
{"type":"unsigned","value":3000000000}
{"type":"floating-point","width":32,"value":1.1}
{"type":"floating-point","width":32,"value":-0.0}
{"type":"floating-point","width":64,"value":-0.1}
{"type":"octet-string","octets":"00ff"}
{"type":"visible-string","value":"closed"}
{"type":"binary-time","value":{"time":"00:00:00.001","milliseconds":1,"days":null}}
{"type":"binary-time","value":{"time":"2024-01-31T23:59:59.999Z",)"
                   R"("milliseconds":86399999,"days":14640}}
{"type":"bcd","value":18}
{"type":"booleanArray","bits":"1010"}
{"type":"objId","value":"1.3.6.1.524"}
{"type":"mMSString","value":"geöffnet"}
{"type":"utc-time","value":"2023-11-14T22:13:20.999999940Z"}
{"type":"structure","members":4}
)");
}

TEST(PacketJson, ReadsThirteenBitsAsAQuality) {
    Json const json = toJson(onlyValue(dataBitString({0x41, 0x08}, 3)));
    EXPECT_EQ(json.at("bits"), "0100000100001");
    EXPECT_EQ(json.at("quality").at("validity"), "invalid");
    EXPECT_EQ(json.at("quality").at("oldData"), true);
    EXPECT_EQ(json.at("quality").at("operatorBlocked"), true);
    EXPECT_EQ(json.at("quality").at("test"), false);
    EXPECT_EQ(json.at("quality").size(), 12U);
    EXPECT_FALSE(toJson(onlyValue(ber(0x8E, {3, 0, 0}))).contains("quality"));
}

TEST(PacketJson, KeepsOctetsAndNamesFaults) {
    EXPECT_EQ(jsonOf(ber(0x88, {0xAB})), R"({"type":"unknown","tag":"88","octets":"ab"})");
    EXPECT_EQ(
        jsonOf(ber(0x91, {0x01})),
        R"({"type":"utc-time","octets":"01","fault":"has a length that does not fit its kind"})");
    EXPECT_EQ(
        jsonOf(ber(0x85, Bytes(9, 0x11))),
        R"({"type":"integer","octets":"111111111111111111","fault":"takes more than 64 bits"})");
    EXPECT_EQ(jsonOf({0x83, 0x05, 0x01}),
              R"({"type":"boolean","octets":"01","fault":"runs past the element it is in"})");
    EXPECT_EQ(jsonOf({0x83}),
              R"({"type":"unreadable","octets":"83","fault":"runs past the element it is in"})");
    GooseMessage message;
    message.t = Bytes{0x01};
    message.confRev = {std::uint64_t{1} << 63U, 9};
    Json const json = toJson(inspected(message));
    EXPECT_EQ(json.at("t").dump(), R"({"octets":"01"})");
    EXPECT_EQ(json.at("confRev").dump(), "9223372036854775808");
    EXPECT_EQ(json.at("faults").at(0).at("fault"), "has a length that does not fit its kind");
    EXPECT_TRUE(json.at("faults").at(0).at("offset").is_number_unsigned());
}

TEST(PacketJson, KeepsUnreadableElementsWithoutATag) {
    GooseMessage message;
    message.extraLast = {0x9F, 0x81, 0x01};
    EXPECT_EQ(toJson(inspected(message)).at("others").at(0).dump(),
              R"({"offset":123,"tag":null,"octets":"9f8101",)"
              R"("fault":"has an identifier of several octets"})");
}

TEST(PacketJson, HasTextForWhatIsNoNumber) {
    using Limits = std::numeric_limits<float>;
    EXPECT_EQ(toJson(onlyValue(dataFloat(Limits::infinity()))).at("value"), "Infinity");
    EXPECT_EQ(toJson(onlyValue(dataFloat(-Limits::infinity()))).at("value"), "-Infinity");
    EXPECT_EQ(toJson(onlyValue(dataFloat(Limits::quiet_NaN()))).at("value"), "NaN");
}

TEST(PacketJson, ReadsBackAsTheSameFloat) {
    using Limits = std::numeric_limits<float>;
    for (float const number : {1.1F, 16'777'217.0F, Limits::max(), Limits::denorm_min(), 0.1F}) {
        Json const json = Json::parse(jsonOf(dataFloat(number)));
        EXPECT_EQ(static_cast<float>(json.at("value").get<double>()), number);
    }
}

TEST(PacketJson, LeavesNamesAsTheyStand) {
    GooseMessage message;
    message.goID = "caf\xE9\n";
    EXPECT_EQ(toJson(inspected(message)).at("goID").get<std::string>(), "caf\xE9\n");
}

}  // namespace
}  // namespace TalIec61850Tools::PacketJsonTest
