// Size and members of every public struct. A program holds them by value: one that was compiled
// against another layout breaks, and no symbol of the library shows it.

#include <gtest/gtest.h>

#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <cstddef>
#include <string>
#include <vector>

namespace TalTest::LayoutTest {
namespace {

using namespace TalIec61850Parser;

struct Size {
    char const* name;
    std::size_t is;
    std::size_t was;  ///< when the ABI number was last raised
};

constexpr Size kSizes[] = {
    {"ASDUData", sizeof(ASDUData), 128},
    {"Asn1Tag", sizeof(Asn1Tag), 40},
    {"Db", sizeof(Db), 112},
    {"EthernetHeader", sizeof(EthernetHeader), 22},
    {"Filter", sizeof(Filter), 56},
    {"FilteredPackagesResult", sizeof(FilteredPackagesResult), 40},
    {"Goose", sizeof(Goose), 352},
    {"GooseIdentifer", sizeof(TalIec61850::GooseIdentifer), 288},
    {"GoosePdu", sizeof(GoosePdu), 376},
    {"GooseProto", sizeof(GooseProto), 56},
    {"HsrInfo", sizeof(HsrInfo), 12},
    {"Package", sizeof(Package), 16},
    {"PackageFile", sizeof(PackageFile), 112},
    {"PcapFile", sizeof(PcapFile), 560},
    {"PcapPacketHeader", sizeof(PcapPacketHeader), 16},
    {"PrpInfo", sizeof(PrpInfo), 10},
    {"SampleData", sizeof(SampleData), 8},
    {"Sv", sizeof(Sv), 312},
    {"SvIdentifer", sizeof(TalIec61850::SvIdentifer), 240},
    {"SvProto", sizeof(SvProto), 56},
    {"Timest", sizeof(Timest), 8},
    {"VlanInfo", sizeof(VlanInfo), 8},
};

struct Offset {
    std::string name;
    std::size_t is;
    std::size_t was;  ///< when the ABI number was last raised
};

/// Where the members of one struct are. offsetof is for standard layout alone.
template <typename Record>
class Members {
public:
    Members(char const* name, Record const& record) : name_(name), record_(record) {}

    template <typename Member>
    Members& has(char const* name, Member const& member, std::size_t was) {
        auto const* const first = reinterpret_cast<char const*>(&record_);
        auto const* const at = reinterpret_cast<char const*>(&member);
        offsets_.push_back({name_ + "::" + name, static_cast<std::size_t>(at - first), was});
        return *this;
    }
    [[nodiscard]] std::vector<Offset> const& offsets() const { return offsets_; }

private:
    std::string name_;
    Record const& record_;
    std::vector<Offset> offsets_;
};

void append(std::vector<Offset>& all, std::vector<Offset> const& more) {
    all.insert(all.end(), more.begin(), more.end());
}

std::vector<Offset> storeOffsets() {
    std::vector<Offset> all;
    Db const db{};
    append(all, Members("Db", db)
                    .has("gooseProto", db.gooseProto, 0)
                    .has("svProto", db.svProto, 56)
                    .offsets());
    FilteredPackagesResult const filteredPackagesResult{};
    append(all, Members("FilteredPackagesResult", filteredPackagesResult)
                    .has("packages", filteredPackagesResult.packages, 0)
                    .has("previousPackage", filteredPackagesResult.previousPackage, 24)
                    .has("nextPackage", filteredPackagesResult.nextPackage, 32)
                    .offsets());
    Goose const goose{};
    append(all, Members("Goose", goose)
                    .has("packetCount", goose.packetCount, 288)
                    .has("files", goose.files, 296)
                    .offsets());
    GooseProto const gooseProto{};
    append(all, Members("GooseProto", gooseProto).has("streams", gooseProto.streams, 0).offsets());
    Package const package{};
    append(all, Members("Package", package)
                    .has("time", package.time, 0)
                    .has("position", package.position, 8)
                    .offsets());
    PackageFile const packageFile{};
    append(all, Members("PackageFile", packageFile)
                    .has("fileName", packageFile.fileName, 0)
                    .has("packages", packageFile.packages, 32)
                    .offsets());
    Sv const sv{};
    append(all, Members("Sv", sv)
                    .has("maxSmpCnt", sv.maxSmpCnt, 240)
                    .has("smpRate", sv.smpRate, 242)
                    .has("packetCount", sv.packetCount, 244)
                    .has("maxNoASDU", sv.maxNoASDU, 248)
                    .has("files", sv.files, 256)
                    .offsets());
    SvProto const svProto{};
    append(all, Members("SvProto", svProto).has("streams", svProto.streams, 0).offsets());
    Timest const timest{};
    append(all, Members("Timest", timest)
                    .has("seconds", timest.seconds, 0)
                    .has("nanoseconds", timest.nanoseconds, 4)
                    .offsets());
    return all;
}

std::vector<Offset> identityOffsets() {
    std::vector<Offset> all;
    GooseIdentifer const gooseIdentifer{};
    append(all, Members("GooseIdentifer", gooseIdentifer)
                    .has("srcMac", gooseIdentifer.srcMac, 0)
                    .has("dstMac", gooseIdentifer.dstMac, 40)
                    .has("vlan", gooseIdentifer.vlan, 80)
                    .has("hsr", gooseIdentifer.hsr, 90)
                    .has("prp", gooseIdentifer.prp, 104)
                    .has("appId", gooseIdentifer.appId, 120)
                    .has("reserved1Bit0", gooseIdentifer.reserved1Bit0, 136)
                    .has("gocbRef", gooseIdentifer.gocbRef, 144)
                    .has("datSet", gooseIdentifer.datSet, 184)
                    .has("goID", gooseIdentifer.goID, 224)
                    .has("simulation", gooseIdentifer.simulation, 264)
                    .has("confRev", gooseIdentifer.confRev, 272)
                    .offsets());
    HsrInfo const hsrInfo{};
    append(all, Members("HsrInfo", hsrInfo)
                    .has("hsrSpare1", hsrInfo.hsrSpare1, 0)
                    .has("lanId", hsrInfo.lanId, 2)
                    .has("hsrSpare2", hsrInfo.hsrSpare2, 4)
                    .has("hsrSpare3", hsrInfo.hsrSpare3, 8)
                    .offsets());
    PrpInfo const prpInfo{};
    append(all, Members("PrpInfo", prpInfo)
                    .has("sequenceNumber", prpInfo.sequenceNumber, 0)
                    .has("lanId", prpInfo.lanId, 4)
                    .has("lsduSize", prpInfo.lsduSize, 6)
                    .offsets());
    SvIdentifer const svIdentifer{};
    append(all, Members("SvIdentifer", svIdentifer)
                    .has("srcMac", svIdentifer.srcMac, 0)
                    .has("spareText", svIdentifer.spareText, 40)
                    .has("vlan", svIdentifer.vlan, 80)
                    .has("hsr", svIdentifer.hsr, 90)
                    .has("prp", svIdentifer.prp, 104)
                    .has("appId", svIdentifer.appId, 120)
                    .has("dstMac", svIdentifer.dstMac, 136)
                    .has("reserved1Bit0", svIdentifer.reserved1Bit0, 176)
                    .has("svID", svIdentifer.svID, 184)
                    .has("confRev", svIdentifer.confRev, 224)
                    .offsets());
    VlanInfo const vlanInfo{};
    append(all, Members("VlanInfo", vlanInfo)
                    .has("priority", vlanInfo.priority, 0)
                    .has("dei", vlanInfo.dei, 2)
                    .has("vlanId", vlanInfo.vlanId, 4)
                    .offsets());
    return all;
}

std::vector<Offset> captureOffsets() {
    std::vector<Offset> all;
    EthernetHeader const ethernetHeader{};
    append(all, Members("EthernetHeader", ethernetHeader)
                    .has("dstMac", ethernetHeader.dstMac, 0)
                    .has("srcMac", ethernetHeader.srcMac, 6)
                    .has("etherType", ethernetHeader.etherType, 12)
                    .has("vlanId", ethernetHeader.vlanId, 14)
                    .has("hasVlan", ethernetHeader.hasVlan, 16)
                    .has("hasHsr", ethernetHeader.hasHsr, 17)
                    .has("hasPrp", ethernetHeader.hasPrp, 18)
                    .has("hsrLan", ethernetHeader.hsrLan, 19)
                    .has("prpLan", ethernetHeader.prpLan, 20)
                    .offsets());
    Filter const filter{};
    append(all, Members("Filter", filter)
                    .has("parseSv", filter.parseSv, 0)
                    .has("parseGoose", filter.parseGoose, 1)
                    .has("svFilters", filter.svFilters, 8)
                    .has("gooseFilters", filter.gooseFilters, 32)
                    .offsets());
    PcapFile const pcapFile("");
    append(all, Members("PcapFile", pcapFile)
                    .has("fileName", pcapFile.fileName, 256)
                    .has("recordPosition", pcapFile.recordPosition, 288)
                    .offsets());
    PcapPacketHeader const pcapPacketHeader{};
    append(all, Members("PcapPacketHeader", pcapPacketHeader)
                    .has("tsSec", pcapPacketHeader.tsSec, 0)
                    .has("tsUsec", pcapPacketHeader.tsUsec, 4)
                    .has("inclLen", pcapPacketHeader.inclLen, 8)
                    .has("origLen", pcapPacketHeader.origLen, 12)
                    .offsets());
    return all;
}

std::vector<Offset> decodedOffsets() {
    std::vector<Offset> all;
    ASDUData const asdu{};
    append(all, Members("ASDUData", asdu)
                    .has("svID", asdu.svID, 0)
                    .has("datSet", asdu.datSet, 32)
                    .has("smpCnt", asdu.smpCnt, 64)
                    .has("confRev", asdu.confRev, 68)
                    .has("refrTm", asdu.refrTm, 72)
                    .has("smpSynch", asdu.smpSynch, 96)
                    .has("smpRate", asdu.smpRate, 98)
                    .has("samples", asdu.samples, 104)
                    .offsets());
    Asn1Tag const asn1Tag{};
    append(all, Members("Asn1Tag", asn1Tag)
                    .has("tag", asn1Tag.tag, 0)
                    .has("length", asn1Tag.length, 4)
                    .has("value", asn1Tag.value, 8)
                    .has("totalLength", asn1Tag.totalLength, 32)
                    .offsets());
    GoosePdu const goosePdu{};
    append(all, Members("GoosePdu", goosePdu)
                    .has("gocbRef", goosePdu.gocbRef, 0)
                    .has("timeAllowedToLive", goosePdu.timeAllowedToLive, 32)
                    .has("datSet", goosePdu.datSet, 64)
                    .has("goID", goosePdu.goID, 96)
                    .has("t", goosePdu.t, 128)
                    .has("stNum", goosePdu.stNum, 160)
                    .has("sqNum", goosePdu.sqNum, 192)
                    .has("simulation", goosePdu.simulation, 224)
                    .has("confRev", goosePdu.confRev, 256)
                    .has("ndsCom", goosePdu.ndsCom, 288)
                    .has("numDatSetEntries", goosePdu.numDatSetEntries, 320)
                    .has("allData", goosePdu.allData, 352)
                    .offsets());
    SampleData const sampleData{};
    append(all, Members("SampleData", sampleData)
                    .has("value", sampleData.value, 0)
                    .has("quality", sampleData.quality, 4)
                    .offsets());
    return all;
}

TEST(Layout, OfPublicStructsStaysAsLongAsTheAbiNumber) {
#if defined(__GLIBCXX__) && defined(__x86_64__) && defined(__LP64__) && !defined(_GLIBCXX_DEBUG)
    for (Size const& size : kSizes) {
        EXPECT_EQ(size.is, size.was) << size.name << ": programs that were compiled before cannot "
                                     << "run with this, see tal_abi in CMakeLists.txt";
    }
    std::vector<Offset> all = storeOffsets();
    append(all, identityOffsets());
    append(all, captureOffsets());
    append(all, decodedOffsets());
    EXPECT_EQ(all.size(), 97U);
    for (Offset const& offset : all) {
        EXPECT_EQ(offset.is, offset.was) << offset.name;
    }
#else
    GTEST_SKIP() << "sizes and offsets were taken on x86-64, with the GNU standard library";
#endif
}

}  // namespace
}  // namespace TalTest::LayoutTest
