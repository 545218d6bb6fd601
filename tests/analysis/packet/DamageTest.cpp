// Frames that are cut, and octets that are no frames.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <algorithm>
#include <nlohmann/json.hpp>

#include "analysis/packet/PacketFrames.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "tools/render/PacketJson.hpp"
#include "tools/render/PacketText.hpp"

namespace TalIec61850Analysis::DamageTest {
namespace {

constexpr std::size_t kPrpTrailerSize = 6;

using namespace TalIec61850Tools;
using namespace TalTest;

/// Whether a value of a cut frame says nothing else than that of the whole one.
bool agrees(DataValue const& cut, DataValue const& whole) {
    if (cut.offset != whole.offset || cut.kind == DataKind::unreadable) {
        return cut.offset == whole.offset;
    }
    auto const* const members = std::get_if<DataValue::Members>(&cut.value);
    if (!cut.fault || members == nullptr) {
        return cut.fault ? std::holds_alternative<OctetString>(cut.value) : cut == whole;
    }
    auto const& all = std::get<DataValue::Members>(whole.value);
    return members->size() <= all.size() &&
           std::equal(members->begin(), members->end(), all.begin(), agrees);
}

/// The field is that of the whole packet, or not there.
template <typename Field>
void expectSameOrNone(Field const& cut, Field const& whole) {
    EXPECT_TRUE(!cut || cut == whole);
}

void expectSameAsFarAsItGoes(GoosePacket const& cut, GoosePacket const& whole) {
    expectSameOrNone(cut.gocbRef, whole.gocbRef);
    expectSameOrNone(cut.timeAllowedtoLive, whole.timeAllowedtoLive);
    expectSameOrNone(cut.datSet, whole.datSet);
    expectSameOrNone(cut.goID, whole.goID);
    expectSameOrNone(cut.t, whole.t);
    expectSameOrNone(cut.stNum, whole.stNum);
    expectSameOrNone(cut.sqNum, whole.sqNum);
    expectSameOrNone(cut.simulation, whole.simulation);
    expectSameOrNone(cut.confRev, whole.confRev);
    expectSameOrNone(cut.ndsCom, whole.ndsCom);
    expectSameOrNone(cut.numDatSetEntries, whole.numDatSetEntries);
    if (cut.allData) {
        ASSERT_LE(cut.allData->size(), whole.allData->size());
        EXPECT_TRUE(
            std::equal(cut.allData->begin(), cut.allData->end(), whole.allData->begin(), agrees));
    }
}

TEST(CutGoose, SaysTheSameAsFarAsItGoes) {
    PlacedFrame const goose = richGoose();
    GoosePacket const whole = decodeGoose(goose.frame, goose.offset);
    ASSERT_TRUE(whole.faults.empty());
    std::size_t const end =
        goose.frame.size() - kPrpTrailerSize - whole.trailing.size();  // of the PDU
    for (std::size_t size = 0; size < goose.frame.size(); ++size) {
        SCOPED_TRACE(size);
        GoosePacket const cut = decodeGoose(prefix(goose.frame, size), goose.offset,
                                            {.originalSize = goose.frame.size()});
        expectSameAsFarAsItGoes(cut, whole);
        EXPECT_EQ(cut.faults.empty(), size >= end);
        EXPECT_EQ(cut.header.prp, std::nullopt);
        if (size >= end) {
            EXPECT_EQ(cut.allData, whole.allData);
        }
        if (HasFailure()) return;
    }
}

TEST(CutGoose, HasEveryFieldThatIsWhole) {
    PlacedFrame const goose = placed(GooseMessage());
    for (std::uint8_t const tag :
         Bytes{0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8A}) {
        // Cut after the field, and in its last octet.
        std::size_t end = goose.offset + 2;
        while (goose.frame[end] != tag) end += 2U + goose.frame[end + 1];
        end += 2U + goose.frame[end + 1];
        auto const fields = [&](std::size_t size) {
            GoosePacket const packet = decodeGoose(prefix(goose.frame, size), goose.offset);
            auto const json = toJson(packet);
            return std::count_if(json.begin(), json.end(),
                                 [](auto const& f) { return f.is_null(); });
        };
        EXPECT_EQ(fields(end) + 1, fields(end - 1)) << unsigned{tag};
    }
}

TEST(CutGoose, KeepsWhatIsThereOfTheElementThatIsCut) {
    GooseMessage message;
    message.setData({dataBoolean(true), dataStructure({dataInteger(5), dataVisibleString("abc")})});
    PlacedFrame const goose = placed(message);
    GoosePacket const packet =
        decodeGoose(prefix(goose.frame, goose.frame.size() - 1), goose.offset);
    ASSERT_TRUE(packet.allData && packet.allData->size() == 2);
    DataValue const& structure = packet.allData->at(1);
    EXPECT_EQ(structure.fault, FaultKind::pastCapture);
    auto const& members = std::get<DataValue::Members>(structure.value);
    ASSERT_EQ(members.size(), 2U);
    EXPECT_EQ(members[0].value, DataValue::Content(std::int64_t{5}));
    EXPECT_EQ(members[1].kind, DataKind::visibleString);
    EXPECT_EQ(members[1].fault, FaultKind::pastCapture);
    EXPECT_EQ(members[1].value, DataValue::Content(text("ab")));
    // goosePdu, allData, the structure and the string in it.
    EXPECT_EQ(kinds(packet.faults), std::vector(4, FaultKind::pastCapture));
}

TEST(CutGoose, KeepsACutNameApart) {
    PlacedFrame const goose = placed(GooseMessage());
    GoosePacket const packet = decodeGoose(prefix(goose.frame, goose.offset + 10), goose.offset);
    EXPECT_EQ(packet.gocbRef, std::nullopt);
    ASSERT_EQ(packet.others.size(), 1U);
    EXPECT_EQ(packet.others[0].tag, 0x80);
    EXPECT_EQ(packet.others[0].octets, text("RELAY1"));
    EXPECT_EQ(packet.others[0].fault, FaultKind::pastCapture);
}

TEST(CutSv, SaysTheSameAsFarAsItGoes) {
    PlacedFrame const sv = richSv();
    SvPacket const whole = decodeSv(sv.frame, sv.offset);
    std::size_t const end = sv.frame.size() - whole.trailing.size();
    for (std::size_t size = 0; size < sv.frame.size(); ++size) {
        SCOPED_TRACE(size);
        SvPacket const cut =
            decodeSv(prefix(sv.frame, size), sv.offset, {.originalSize = sv.frame.size()});
        expectSameOrNone(cut.noASDU, whole.noASDU);
        expectSameOrNone(cut.security, whole.security);
        ASSERT_LE(cut.asdus.size(), whole.asdus.size());
        for (std::size_t i = 0; i < cut.asdus.size(); ++i) {
            AsduContent const& asdu = cut.asdus[i];
            AsduContent const& all = whole.asdus[i];
            EXPECT_EQ(asdu.offset, all.offset);
            expectSameOrNone(asdu.svID, all.svID);
            expectSameOrNone(asdu.datSet, all.datSet);
            expectSameOrNone(asdu.smpCnt, all.smpCnt);
            expectSameOrNone(asdu.confRev, all.confRev);
            expectSameOrNone(asdu.refrTm, all.refrTm);
            expectSameOrNone(asdu.smpSynch, all.smpSynch);
            expectSameOrNone(asdu.smpRate, all.smpRate);
            expectSameOrNone(asdu.seqData, all.seqData);
            expectSameOrNone(asdu.smpMod, all.smpMod);
            expectSameOrNone(asdu.gmIdentity, all.gmIdentity);
        }
        EXPECT_EQ(cut.faults.empty(), size >= end);
        if (HasFailure()) return;
    }
}

TEST(CutSv, BeforeItsAsdusHasWhatStandsBeforeThem) {
    PlacedFrame const sv = richSv();
    SvPacket const packet =
        decodeSv(prefix(sv.frame, sv.offset), {.originalSize = sv.frame.size()});
    EXPECT_EQ(packet.noASDU, Integer(std::int64_t{2}));
    EXPECT_EQ(packet.security, (OctetString{0x30, 0x00}));
    EXPECT_EQ(kinds(packet.faults), (std::vector{FaultKind::pastCapture, FaultKind::notThere}));
    EXPECT_EQ(packet.faults.back().offset, sv.offset);
}

TEST(Damage, OfAnElementThatRunsPastItsParentIsTold) {
    GoosePacket const packet =
        inspectedData(ber(0xA2, concat({dataBoolean(true), {0x85, 0x03, 0x01, 0x02}})));
    EXPECT_EQ(kinds(packet.faults), std::vector{FaultKind::pastParent});
    auto const& members = std::get<DataValue::Members>(packet.allData->at(0).value);
    ASSERT_EQ(members.size(), 2U);
    EXPECT_EQ(members[1].kind, DataKind::integer);
    EXPECT_EQ(members[1].value, DataValue::Content(OctetString{0x01, 0x02}));
    EXPECT_EQ(packet.allData->at(0).fault, std::nullopt);
}

TEST(Damage, EndsTheLevelItStandsOnAlone) {
    auto const broken = ber(0xA2, concat({{0x83}, {0x7F, 0x00}}));
    GoosePacket const packet = inspectedData(concat({broken, dataInteger(1)}));
    ASSERT_EQ(packet.allData->size(), 2U);
    EXPECT_EQ(packet.allData->at(1).value, DataValue::Content(std::int64_t{1}));
    EXPECT_EQ(kinds(packet.faults), std::vector{FaultKind::pastParent});
}

/// The kind of damage that octets in allData are, all of which are kept.
FaultKind damageOf(Bytes const& octets) {
    DataValue const value = onlyValue(octets);
    EXPECT_EQ(value.kind, DataKind::unreadable);
    EXPECT_EQ(value.value, DataValue::Content(octets));
    return value.fault.value_or(FaultKind::notThere);
}

TEST(Damage, OfOctetsThatMakeNoElementIsToldAndTheyAreKept) {
    EXPECT_EQ(damageOf({0xA2, 0x80, 0x83, 0x01, 0x00, 0x00, 0x00}), FaultKind::indefiniteLength);
    EXPECT_EQ(damageOf({0x83, 0x85, 0, 0, 0, 0, 1, 0xFF}), FaultKind::longLength);
    EXPECT_EQ(damageOf({0x83, 0xFF}), FaultKind::longLength);
    EXPECT_EQ(damageOf({0x9F, 0x20, 0x01, 0x00}), FaultKind::longIdentifier);
    EXPECT_EQ(damageOf({0xBF, 0x20}), FaultKind::longIdentifier);
    EXPECT_EQ(damageOf({0x83}), FaultKind::pastParent);
    EXPECT_EQ(damageOf({0x83, 0x82, 0x00}), FaultKind::pastParent);
}

TEST(Damage, LeavesAnElementItsTagWhereTheLengthIsThere) {
    DataValue const value = onlyValue({0x83, 0x81, 0x05});
    EXPECT_EQ(value.kind, DataKind::boolean);
    EXPECT_EQ(value.fault, FaultKind::pastParent);
    EXPECT_EQ(value.value, DataValue::Content(OctetString{}));
}

TEST(Damage, CountsMoreThanRepetition) {
    for (Bytes const& last : {Bytes{0x83, 0x7F, 0x61}, Bytes{0xAB, 0x7F, 0x61}}) {
        GooseMessage message;
        message.extraLast = last;
        GoosePacket const packet = inspected(message);
        ASSERT_EQ(packet.others.size(), 1U);
        EXPECT_EQ(packet.others[0].fault, FaultKind::pastParent);
        EXPECT_EQ(packet.others[0].octets, OctetString{0x61});
        EXPECT_EQ(packet.goID, message.goID);
    }
}

TEST(Damage, OfALengthIsToldByWhetherTheCaptureCouldHoldIt) {
    PlacedFrame goose = placed(GooseMessage());
    // The last element of the PDU, a boolean, claims one octet more than its parents.
    goose.frame[goose.frame.size() - 2] = 2;
    EXPECT_EQ(kinds(decodeGoose(goose.frame, goose.offset).faults),
              std::vector{FaultKind::pastParent});
    // Now they all do.
    goose.frame[goose.offset + 1] = static_cast<std::uint8_t>(goose.frame[goose.offset + 1] + 1);
    goose.frame[goose.frame.size() - 4] = 4;
    EXPECT_EQ(kinds(decodeGoose(goose.frame, goose.offset).faults),
              std::vector(3, FaultKind::pastCapture));
}

TEST(Damage, TakesLittleMemoryEvenOfTheLeastElements) {
    // A value takes two octets at least: this many times them, growing lists included.
    EXPECT_LE(sizeof(DataValue) + sizeof(Fault), 48U * 2U);
    EXPECT_LE(sizeof(RawElement) + sizeof(Fault), 48U * 2U);
}

/// An index into the frame, mostly of an element of this tag.
std::size_t anyOffset(Bytes const& frame, std::uint8_t tag) {
    auto const found = find(frame, {tag});
    bool const isFound = found && *rc::gen::inRange(0, 4) != 0;
    return isFound ? *found : *rc::gen::inRange<std::size_t>(0, frame.size() + 2);
}

/// The frame with some octets changed.
Bytes changed(Bytes frame) {
    int const count = *rc::gen::inRange(1, 6);
    for (int i = 0; i < count; ++i) {
        auto const index =
            *rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::size_t>(0, frame.size()));
        frame[index] = *rc::gen::resize(rc::kNominalSize, rc::gen::arbitrary<std::uint8_t>());
    }
    return frame;
}

template <typename Packet>
void expectTold(Packet const& packet) {
    RC_ASSERT(toText(packet).size() > 3U);
    auto const json = toJson(packet);
    RC_ASSERT(json.at("faults").size() == packet.faults.size());
    using Json = nlohmann::ordered_json;
    RC_ASSERT(Json::parse(json.dump(-1, ' ', true, Json::error_handler_t::replace)).is_object());
}

RC_GTEST_PROP(AnyOctets, AreReadAsGoose, (Bytes const& frame)) {
    expectTold(decodeGoose(frame, anyOffset(frame, 0x61)));
    expectTold(decodeGoose(frame));
}

RC_GTEST_PROP(AnyOctets, AreReadAsSv, (Bytes const& frame)) {
    expectTold(decodeSv(frame, anyOffset(frame, 0xA2)));
    expectTold(decodeSv(frame));
}

RC_GTEST_PROP(AnyOctets, InPlaceOfSomeOfAGooseFrameAreRead, ()) {
    static PlacedFrame const goose = richGoose();
    expectTold(decodeGoose(changed(goose.frame), goose.offset));
}

RC_GTEST_PROP(AnyOctets, InPlaceOfSomeOfAnSvFrameAreRead, ()) {
    static PlacedFrame const sv = richSv();
    expectTold(decodeSv(changed(sv.frame), sv.offset));
}

RC_GTEST_PROP(AnyOctets, InUnknownElementsAreAllKept, (std::vector<Bytes> const& values)) {
    GooseMessage message;
    for (Bytes const& value : values) append(message.extraBeforeData, ber(0x8C, value));
    GoosePacket const packet = inspected(message);
    RC_ASSERT(packet.faults.empty());
    RC_ASSERT(packet.others.size() == values.size());
    for (std::size_t i = 0; i < values.size(); ++i) RC_ASSERT(packet.others[i].octets == values[i]);
}

}  // namespace
}  // namespace TalIec61850Analysis::DamageTest
