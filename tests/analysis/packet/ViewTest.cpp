// Views, by themselves and against the owning forms.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <ranges>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/packet/PacketFrames.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"

namespace TalIec61850Analysis::ViewTest {
namespace {

using namespace TalTest;

static_assert(std::ranges::forward_range<Elements>);
static_assert(std::ranges::forward_range<DataViews>);
static_assert(std::ranges::forward_range<AsduViews>);
static_assert(std::ranges::forward_range<ObjectIdView>);
static_assert(std::is_trivially_copyable_v<GooseView> && std::is_trivially_copyable_v<SvView>);

template <typename Value>
std::optional<Value> copied(std::optional<Value> const& field) {
    return field;
}
std::optional<std::string> copied(std::optional<std::string_view> const& field) {
    return field ? std::optional(std::string(*field)) : std::nullopt;
}
std::optional<OctetString> copied(std::optional<Octets> const& field) {
    return field ? std::optional(toOwned(*field)) : std::nullopt;
}
std::optional<Integer> copied(std::optional<IntegerView> const& field) {
    return field ? std::optional(toOwned(*field)) : std::nullopt;
}
template <typename Value>
std::optional<Readable<Value>> copied(std::optional<ReadableView<Value>> const& field) {
    return field ? std::optional(toOwned(*field)) : std::nullopt;
}
std::optional<SequenceOfData> copied(std::optional<SamplesView> const& field) {
    return field ? std::optional(toOwned(*field)) : std::nullopt;
}

template <typename View>
std::vector<RawElement> othersOf(View const& view) {
    std::vector<RawElement> others;
    view.visitOthers([&](ElementView const& element) { others.push_back(toOwned(element)); });
    return others;
}

template <typename View>
Faults faultsOf(View const& view) {
    Faults faults;
    view.visitFaults([&](Fault const& fault) { faults.push_back(fault); });
    return faults;
}

void expectSame(GooseView const& view, GoosePacket const& packet) {
    EXPECT_EQ(view.header, packet.header);
    EXPECT_EQ(copied(view.gocbRef), packet.gocbRef);
    EXPECT_EQ(copied(view.timeAllowedtoLive), packet.timeAllowedtoLive);
    EXPECT_EQ(copied(view.datSet), packet.datSet);
    EXPECT_EQ(copied(view.goID), packet.goID);
    EXPECT_EQ(copied(view.t), packet.t);
    EXPECT_EQ(copied(view.stNum), packet.stNum);
    EXPECT_EQ(copied(view.sqNum), packet.sqNum);
    EXPECT_EQ(copied(view.simulation), packet.simulation);
    EXPECT_EQ(copied(view.confRev), packet.confRev);
    EXPECT_EQ(copied(view.ndsCom), packet.ndsCom);
    EXPECT_EQ(copied(view.numDatSetEntries), packet.numDatSetEntries);
    ASSERT_EQ(view.allData.has_value(), packet.allData.has_value());
    if (view.allData) {
        EXPECT_EQ(toOwned(*view.allData), *packet.allData);
    }
    EXPECT_EQ(othersOf(view), packet.others);
    EXPECT_EQ(toOwned(view.leading), packet.leading);
    EXPECT_EQ(toOwned(view.trailing), packet.trailing);
    EXPECT_EQ(faultsOf(view), packet.faults);
}

void expectSame(AsduView const& view, AsduContent const& asdu) {
    EXPECT_EQ(view.element.offset, asdu.offset);
    EXPECT_EQ(copied(view.svID), asdu.svID);
    EXPECT_EQ(copied(view.datSet), asdu.datSet);
    EXPECT_EQ(copied(view.smpCnt), asdu.smpCnt);
    EXPECT_EQ(copied(view.confRev), asdu.confRev);
    EXPECT_EQ(copied(view.refrTm), asdu.refrTm);
    EXPECT_EQ(copied(view.smpSynch), asdu.smpSynch);
    EXPECT_EQ(copied(view.smpRate), asdu.smpRate);
    EXPECT_EQ(copied(view.seqData), asdu.seqData);
    EXPECT_EQ(copied(view.smpMod), asdu.smpMod);
    EXPECT_EQ(copied(view.gmIdentity), asdu.gmIdentity);
    EXPECT_EQ(othersOf(view), asdu.others);
}

void expectSame(SvView const& view, SvPacket const& packet) {
    EXPECT_EQ(view.header, packet.header);
    EXPECT_EQ(copied(view.noASDU), packet.noASDU);
    EXPECT_EQ(copied(view.security), packet.security);
    ASSERT_EQ(std::ranges::distance(view.asdus), std::ssize(packet.asdus));
    auto owned = packet.asdus.begin();
    for (AsduView const& asdu : view.asdus) {
        expectSame(asdu, *owned++);
    }
    EXPECT_EQ(othersOf(view), packet.others);
    EXPECT_EQ(toOwned(view.leading), packet.leading);
    EXPECT_EQ(toOwned(view.trailing), packet.trailing);
    EXPECT_EQ(faultsOf(view), packet.faults);
}

void expectSameOfAll(Bytes const& frame, std::size_t offset) {
    expectSame(viewGoose(frame, offset), decodeGoose(frame, offset));
    expectSame(viewGoose(frame), decodeGoose(frame));
    expectSame(viewSv(frame, offset), decodeSv(frame, offset));
    expectSame(viewSv(frame), decodeSv(frame));
}

TEST(Views, ShowWhatTheOwningFormsHold) {
    for (PlacedFrame const& placedFrame : {richGoose(), richSv(), placed(GooseMessage())}) {
        expectSameOfAll(placedFrame.frame, placedFrame.offset);
        for (std::size_t size = 0; size < placedFrame.frame.size(); ++size) {
            SCOPED_TRACE(size);
            expectSameOfAll(prefix(placedFrame.frame, size), placedFrame.offset);
            if (::testing::Test::HasFailure()) return;
        }
    }
}

RC_GTEST_PROP(Views, ShowWhatTheOwningFormsHoldOfDamagedFrames, (std::uint8_t octet)) {
    PlacedFrame damaged = *rc::gen::element(richGoose(), richSv());
    auto const index = *rc::gen::inRange<std::size_t>(0, damaged.frame.size());
    damaged.frame[index] = octet;
    expectSameOfAll(damaged.frame, damaged.offset);
    RC_ASSERT(!::testing::Test::HasFailure());
}

TEST(GooseViews, HaveCountersOfFullWidth) {
    GooseMessage message;
    message.stNum = MinimalUnsigned(36'705);
    message.sqNum = MinimalUnsigned(4'294'967'295);
    PlacedFrame const goose = placed(message);
    GooseView const view = viewGoose(goose.frame);
    EXPECT_EQ(std::get<std::int64_t>(view.stNum.value()), 36'705);
    EXPECT_EQ(std::get<std::int64_t>(view.sqNum.value()), 4'294'967'295);
}

TEST(GooseViews, PointIntoTheFrame) {
    PlacedFrame const goose = placed(GooseMessage());
    GooseView const view = viewGoose(goose.frame);
    auto const* const name = reinterpret_cast<std::uint8_t const*>(view.gocbRef.value().data());
    EXPECT_GE(name, goose.frame.data());
    EXPECT_LT(name, goose.frame.data() + goose.frame.size());
    EXPECT_EQ(*view.gocbRef, "RELAY1LD0/LLN0$GO$gcb1");
}

TEST(GooseViews, OfNothingAreEmpty) {
    GooseView const view = viewGoose({});
    EXPECT_FALSE(view.pdu || view.allData || view.stNum);
    EXPECT_EQ(faultsOf(view), (Faults{{0, FaultKind::headerCut}, {0, FaultKind::notThere}}));
    EXPECT_EQ(faultsOf(viewSv({})), (Faults{{0, FaultKind::headerCut}, {0, FaultKind::notThere}}));
}

TEST(DataViewRanges, CanBeWalkedTwice) {
    GooseMessage message;
    message.setData({dataStructure({dataInteger(1), dataInteger(2)}), dataBoolean(true)});
    PlacedFrame const goose = placed(message);
    GooseView const view = viewGoose(goose.frame);
    auto first = view.allData->begin();
    auto const again = first;
    EXPECT_EQ(std::ranges::distance(*view.allData), 2);
    DataView const structure = *first++;
    EXPECT_EQ(structure.kind, DataKind::structure);
    EXPECT_EQ((*first).kind, DataKind::boolean);
    EXPECT_EQ((*again).kind, DataKind::structure);
    auto const members = std::get<DataViews>(structure.value);
    std::vector<std::int64_t> numbers;
    std::ranges::transform(members, std::back_inserter(numbers), [](DataView const& member) {
        return std::get<std::int64_t>(member.value);
    });
    EXPECT_EQ(numbers, (std::vector<std::int64_t>{1, 2}));
    EXPECT_EQ(++first, view.allData->end());
}

TEST(SampleViews, GiveEachChannel) {
    PlacedFrame const sv = richSv();
    AsduView const asdu = *viewSv(sv.frame).asdus.begin();
    ASSERT_TRUE(asdu.seqData && asdu.seqData->holdsChannels());
    ASSERT_EQ(asdu.seqData->size(), 2U);
    EXPECT_EQ((*asdu.seqData)[0], (ChannelSample{.value = -1, .quality = {0x1FFF}}));
    EXPECT_EQ((*asdu.seqData)[1], (ChannelSample{.value = 5, .quality = {0x2000}}));
    EXPECT_EQ(asdu.seqData->octets().size(), 16U);
}

TEST(SampleViews, OfAnotherMakeAreOctetsAlone) {
    OctetString const twelve(12);
    EXPECT_FALSE(SamplesView(twelve).holdsChannels());
    EXPECT_EQ(SamplesView(twelve).size(), 0U);
    EXPECT_EQ(SamplesView(twelve).octets().size(), 12U);
    EXPECT_TRUE(SamplesView().holdsChannels());
}

// --- Each kind of fault, and where ---------------------------------------------------------------

/// The faults of a message with these octets in allData, counted from the first of them.
Faults faultsIn(Bytes const& allData) {
    GooseMessage message;
    message.allData = allData;
    PlacedFrame const goose = placed(message);
    GooseView const view = viewGoose(goose.frame);
    Faults faults = faultsOf(view);
    for (Fault& fault : faults) {
        fault.offset -= view.pdu->end() - allData.size();
    }
    return faults;
}

TEST(ViewFaults, InDataHaveTheirKindAndPlace) {
    auto const second = [](Bytes const& value) {
        return faultsIn(concat({dataBoolean(true), value}));
    };
    auto const fault = [](FaultKind kind) { return Faults{{3, kind}}; };
    EXPECT_EQ(second({0xA2, 0x80, 0x00, 0x00}), fault(FaultKind::indefiniteLength));
    EXPECT_EQ(second({0x83, 0x85, 0, 0, 0, 0, 1, 0xFF}), fault(FaultKind::longLength));
    EXPECT_EQ(second({0x9F, 0x20, 0x01, 0x00}), fault(FaultKind::longIdentifier));
    EXPECT_EQ(second({0x83, 0x02, 0x01}), fault(FaultKind::pastParent));
    EXPECT_EQ(second({0x83}), fault(FaultKind::pastParent));
    EXPECT_EQ(second(ber(0x83, {1, 2})), fault(FaultKind::wrongLength));
    EXPECT_EQ(second(ber(0x84, {8, 2})), fault(FaultKind::wrongContent));
    EXPECT_EQ(second(ber(0x85, Bytes(9, 1))), fault(FaultKind::tooWide));
    EXPECT_EQ(second(ber(0x86, {0x80})), fault(FaultKind::negative));
    EXPECT_EQ(second(nested(0xA2, 33, dataBoolean(true))),
              (Faults{{3 + 2 * 31, FaultKind::tooDeep}}));
}

TEST(ViewFaults, OfAFrameHaveTheirKindAndPlace) {
    GooseMessage message;
    message.extraLast = ber(0x8C, {0x01});  // no field
    PlacedFrame const goose = placed(message);
    EXPECT_TRUE(faultsOf(viewGoose(goose.frame)).empty());
    EXPECT_EQ(faultsOf(viewGoose(prefix(goose.frame, 3))),
              (Faults{{3, FaultKind::headerCut}, {3, FaultKind::notThere}}));
    EXPECT_EQ(faultsOf(viewGoose(goose.frame, 0)), (Faults{{0, FaultKind::notThere}}));
    EXPECT_EQ(faultsOf(viewGoose(prefix(goose.frame, goose.frame.size() - 1))),
              (Faults{{goose.offset, FaultKind::pastCapture},
                      {goose.frame.size() - 3, FaultKind::pastCapture}}));
    Bytes longFrame = goose.frame;
    longFrame.resize(kMaxFrameSize + 1);
    EXPECT_EQ(faultsOf(viewGoose(longFrame)), (Faults{{kMaxFrameSize, FaultKind::tooLong}}));
}

TEST(ViewFaults, OfARepeatedFieldAreAtTheSecond) {
    GooseMessage message;
    message.extraLast = ber(0x85, {0x07});
    PlacedFrame const goose = placed(message);
    GooseView const view = viewGoose(goose.frame);
    EXPECT_EQ(std::get<std::int64_t>(view.stNum.value()), 1);
    EXPECT_EQ(faultsOf(view), (Faults{{goose.frame.size() - 3, FaultKind::repeated}}));
    ASSERT_EQ(othersOf(view).size(), 1U);
    EXPECT_EQ(othersOf(view)[0].octets, OctetString{0x07});
}

}  // namespace
}  // namespace TalIec61850Analysis::ViewTest
