// The size of every public struct. A program holds them by value: one that was compiled against
// other sizes breaks, and no symbol of the library shows it.

#include <gtest/gtest.h>

#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <cstddef>

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

TEST(Layout, OfPublicStructsStaysAsLongAsTheAbiNumber) {
#if defined(__GLIBCXX__) && defined(__x86_64__) && defined(__LP64__) && !defined(_GLIBCXX_DEBUG)
    for (Size const& size : kSizes) {
        EXPECT_EQ(size.is, size.was) << size.name << ": programs that were compiled before cannot "
                                     << "run with this, see tal_abi in CMakeLists.txt";
    }
#else
    GTEST_SKIP() << "the sizes were taken on x86-64, with the GNU standard library";
#endif
}

}  // namespace
