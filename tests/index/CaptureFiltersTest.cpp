// Captures indexed through filter lists made of the streams found in them.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "index/IndexImage.hpp"
#include "index/Indexing.hpp"
#include "index/KnownCaptures.hpp"

namespace TalTest::CaptureFiltersTest {
namespace {

using namespace TalIec61850Parser;

using CaptureFilters = KnownCaptureTest;

INSTANTIATE_TEST_SUITE_P(Captures, CaptureFilters, testing::ValuesIn(knownCaptures()), testName);

template <typename Id>
using Entries = std::vector<Id>;

/// An entry that asks for nothing.
template <typename Id>
Id open() {
    Id id;
    id.appId.reset();
    return id;
}

/// An entry that asks for one member of `id`.
template <typename Id, typename Member>
Id asking(Id const& id, Member Id::*member) {
    Id entry = open<Id>();
    entry.*member = id.*member;
    return entry;
}

Entries<GooseIdentifer> askingEachMember(GooseIdentifer const& id) {
    using Id = GooseIdentifer;
    return {asking(id, &Id::srcMac),     asking(id, &Id::dstMac),  asking(id, &Id::vlan),
            asking(id, &Id::hsr),        asking(id, &Id::prp),     asking(id, &Id::appId),
            asking(id, &Id::gocbRef),    asking(id, &Id::datSet),  asking(id, &Id::goID),
            asking(id, &Id::simulation), asking(id, &Id::confRev), asking(id, &Id::reserved1Bit0)};
}

Entries<SvIdentifer> askingEachMember(SvIdentifer const& id) {
    using Id = SvIdentifer;
    return {asking(id, &Id::srcMac), asking(id, &Id::dstMac),  asking(id, &Id::vlan),
            asking(id, &Id::hsr),    asking(id, &Id::prp),     asking(id, &Id::appId),
            asking(id, &Id::svID),   asking(id, &Id::confRev), asking(id, &Id::reserved1Bit0)};
}

Entries<GooseIdentifer> gooseIdentities(Db const& db) {
    return {db.gooseProto.streams.begin(), db.gooseProto.streams.end()};
}

Entries<SvIdentifer> svIdentities(Db const& db) {
    return {db.svProto.streams.begin(), db.svProto.streams.end()};
}

Filter filterOf(Entries<GooseIdentifer> entries) { return {true, true, {}, std::move(entries)}; }
Filter filterOf(Entries<SvIdentifer> entries) { return {true, true, std::move(entries), {}}; }

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char character) {
        return static_cast<char>(std::toupper(character));
    });
    return text;
}

/// Values next to those of `id`: what no stream of the captures carries.
template <typename Id>
Entries<Id> askingForOthers(Id const& id) {
    Entries<Id> entries(5, open<Id>());
    entries[0].srcMac = upperCase(id.srcMac.value()) + "F";
    entries[1].appId = id.appId.value() + 1;
    entries[2].confRev = id.confRev.value_or(0) + 0x1'0000'0000;
    entries[3].vlan.emplace().vlanId = std::uint16_t{4095};
    entries[4].reserved1Bit0 = std::uint8_t{2};
    return entries;
}

template <typename Id>
void expectAgreement(std::string const& path, Entries<Id> const& entries, std::string const& what) {
    ASSERT_EQ(disagreement({path}, filterOf(entries)), "") << what;
}

template <typename Id>
void expectAgreementOnEachMember(std::string const& path, Entries<Id> const& found) {
    for (Id const& id : found) {
        for (Id const& entry : askingEachMember(id))
            expectAgreement<Id>(path, {entry}, identityText(entry));
        for (Id const& entry : askingForOthers(id))
            expectAgreement<Id>(path, {entry}, identityText(entry));
        expectAgreement<Id>(path, {id}, "whole identity");
    }
}

template <typename Id>
void expectAgreementOnLists(std::string const& path, Entries<Id> const& found) {
    if (found.empty()) return;
    Entries<Id> const first = askingEachMember(found.front());
    Entries<Id> const last = askingEachMember(found.back());
    expectAgreement(path, found, "all streams");
    expectAgreement(path, first, "the members of one stream in entries of their own");
    expectAgreement<Id>(path, {Id()}, "one default entry");
    expectAgreement<Id>(path, {first[0], last[0]}, "two source addresses");
    expectAgreement<Id>(path, {first[0], last[1]}, "a source and a destination address");
    expectAgreement<Id>(path, {first[6], last[6], askingForOthers(found.front())[1]},
                        "two names, and an APPID that does not occur");
    Entries<Id> others = askingForOthers(found.front());
    for (Id& entry : others) entry.srcMac = "00:00:00:00:00:00";
    expectAgreement(path, others, "a source address that does not occur, in every entry");
}

TEST_P(CaptureFilters, EqualPlainIndexForEachMemberOfEachStream) {
    Db db;
    indexInto(db, path());
    expectAgreementOnEachMember(path(), gooseIdentities(db));
    expectAgreementOnEachMember(path(), svIdentities(db));
}

TEST_P(CaptureFilters, EqualPlainIndexForListsOfSeveralEntries) {
    Db db;
    indexInto(db, path());
    expectAgreementOnLists(path(), gooseIdentities(db));
    expectAgreementOnLists(path(), svIdentities(db));
}

TEST_P(CaptureFilters, KeepAGooseStreamThatIsAskedForByItsIdentity) {
    if (GetParam().name == "own-goose-trailers-as-elements.pcap") return;  // see below
    Db db;
    indexInto(db, path());
    IndexImage const all = imageOf(db);
    for (GooseIdentifer id : gooseIdentities(db)) {
        std::string const identity = identityText(id);
        id.hsr.reset();  // frames of the other ring direction are the same stream
        id.prp.reset();  // and so are those of the other network
        IndexImage const kept = libraryImage({path()}, filterOf(Entries<GooseIdentifer>{id}));
        ASSERT_NE(findStream(kept, identity), nullptr) << identity;
        EXPECT_EQ(*findStream(kept, identity), *findStream(all, identity));
    }
}

/// An entry for any of these, or for one of several ASDUs.
Filter svIDs(std::vector<std::string> const& names) {
    Entries<SvIdentifer> entries;
    for (std::string const& name : names) {
        entries.push_back(open<SvIdentifer>());
        entries.back().svID = name;
    }
    return filterOf(entries);
}

std::size_t svPackets(IndexImage const& image) {
    std::size_t count = 0;
    for (StreamImage const& stream : image.streams)
        if (stream.identity.starts_with("sv")) count += stream.packetCount;
    return count;
}

class CaptureFiltersOnSeveralAsdus : public testing::TestWithParam<ThirteenAsdus> {};

TEST_P(CaptureFiltersOnSeveralAsdus, AdmitAFrameOnlyByTheNamesOfAllItsAsdus) {
    std::string const path = pathOf(GetParam().capture);
    std::vector<std::string> const& names = GetParam().svIDs;
    EXPECT_EQ(svPackets(libraryImage({path}, svIDs(names))), GetParam().frames);
    EXPECT_EQ(svPackets(libraryImage({path}, svIDs({names.back()}))), 0U);
    EXPECT_EQ(svPackets(libraryImage({path}, svIDs({names.begin() + 1, names.end()}))), 0U);
}

INSTANTIATE_TEST_SUITE_P(Captures, CaptureFiltersOnSeveralAsdus,
                         testing::ValuesIn(capturesOfThirteenAsdus()), [](auto const& instance) {
                             return captureTestName(instance.param.capture.name);
                         });

TEST(CaptureFiltersOnSeveralDatSets, AdmitAFrameOnlyByAllOfThem) {
    std::string const path = ownCapture("own-goose-trailers-as-elements.pcap");
    auto const packets = [&path](std::vector<std::string> const& names) {
        Entries<GooseIdentifer> entries;
        for (std::string const& name : names) entries.emplace_back().datSet = name;
        std::size_t count = 0;
        for (StreamImage const& stream : libraryImage({path}, filterOf(entries)).streams)
            count += stream.packetCount;
        return count;
    };
    std::string const inPdu = "BAY1_PROTLD0/LLN0$dsTrip";
    std::string const inTrailer = "SIGNED/AS$datSet";
    EXPECT_EQ(packets({inPdu}), 4U);
    EXPECT_EQ(packets({inTrailer}), 0U);
    EXPECT_EQ(packets({inPdu, inTrailer}), 5U);
}

}  // namespace
}  // namespace TalTest::CaptureFiltersTest
