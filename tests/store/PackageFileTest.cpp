#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Package.hpp>
#include <TalIec61850Parser/store/PackageFile.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <TalIec61850Parser/store/Timest.hpp>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace TalTest::PackageFileTest {
namespace {

using TalIec61850Parser::Goose;
using TalIec61850Parser::Package;
using TalIec61850Parser::PackageFile;
using TalIec61850Parser::Sv;
using TalIec61850Parser::Timest;
using Files = std::remove_reference_t<decltype(std::declval<Goose&>().files)>;
using Hash = Files::hasher;
using Equal = Files::key_equal;

static_assert(sizeof(Package) == 16);
static_assert(std::is_same_v<decltype(Timest::seconds), std::uint32_t>);
static_assert(std::is_same_v<decltype(Timest::nanoseconds), std::uint32_t>);
static_assert(std::is_same_v<decltype(Package::time), Timest>);
static_assert(std::is_same_v<decltype(Package::position), std::uint64_t>);
static_assert(std::is_same_v<decltype(PackageFile::fileName), std::string>);
static_assert(std::is_same_v<decltype(PackageFile::packages), std::deque<Package>>);
static_assert(std::is_same_v<Files, std::unordered_set<PackageFile, Hash, Equal>>);
static_assert(std::is_same_v<decltype(Sv::files), Files>);
static_assert(
    std::is_same_v<decltype(std::declval<Goose const&>().addFile("")), PackageFile const*>);
static_assert(std::is_same_v<decltype(std::declval<Sv const&>().addFile("")), PackageFile const*>);
static_assert(std::is_same_v<decltype(std::declval<PackageFile const&>().getBeginTime()), Timest>);
static_assert(std::is_same_v<decltype(std::declval<PackageFile const&>().getEndTime()), Timest>);
static_assert(!std::is_nothrow_invocable_v<Hash const&, PackageFile const&>);

constexpr std::uint32_t kMax = std::numeric_limits<std::uint32_t>::max();

template <typename Stream>
class StreamAddFile : public testing::Test {};
using Streams = testing::Types<Goose, Sv>;
TYPED_TEST_SUITE(StreamAddFile, Streams);

TEST(TimestOrder, ComparesSecondsThenNanoseconds) {
    EXPECT_TRUE((Timest{1, 5} < Timest{2, 0}));
    EXPECT_FALSE((Timest{2, 0} < Timest{1, 5}));
    EXPECT_TRUE((Timest{1, 5} < Timest{1, 6}));
    EXPECT_FALSE((Timest{1, 6} < Timest{1, 5}));
    EXPECT_FALSE((Timest{1, 5} < Timest{1, 5}));
}

TEST(TimestOrder, IsUnsigned) {
    EXPECT_TRUE((Timest{0x7FFFFFFF, 0} < Timest{0x80000000U, 0}));
    EXPECT_TRUE((Timest{1, 0} < Timest{kMax, 0}));
    EXPECT_TRUE((Timest{1, 0x7FFFFFFF} < Timest{1, 0x80000000U}));
    EXPECT_TRUE((Timest{1, 1} < Timest{1, kMax}));
}

TEST(TimestOrder, DoesNotNormaliseNanoseconds) {
    EXPECT_TRUE((Timest{1, kMax} < Timest{2, 0}));
    EXPECT_TRUE((Timest{1, 999'999'999} < Timest{1, 1'000'000'000}));
    EXPECT_TRUE((Timest{1, 1'000'000'000} < Timest{2, 0}));
}

RC_GTEST_PROP(TimestOrder, IsThatOfThePair,
              (std::uint32_t seconds, std::uint32_t nanoseconds, std::uint32_t other)) {
    for (Timest const& b : {Timest{seconds, other}, Timest{other, nanoseconds},
                            Timest{other, seconds}, Timest{seconds, nanoseconds}}) {
        Timest const a{seconds, nanoseconds};
        RC_ASSERT((a < b) ==
                  (std::pair(a.seconds, a.nanoseconds) < std::pair(b.seconds, b.nanoseconds)));
    }
}

TEST(PackageFile, IsEmptyByDefault) {
    PackageFile const file;
    EXPECT_EQ(file.fileName, "");
    EXPECT_TRUE(file.packages.empty());
}

TEST(PackageFile, KeepsItsNameAsGiven) {
    std::string const name("../Captures//a b.PCAP\0tail", 26);
    PackageFile const file(name);
    EXPECT_EQ(file.fileName, name);
    EXPECT_TRUE(file.packages.empty());
}

TEST(PackageFileTimes, AreZeroWithoutPackets) {
    PackageFile const file("a.pcap");
    EXPECT_EQ(file.getBeginTime(), (Timest{0, 0}));
    EXPECT_EQ(file.getEndTime(), (Timest{0, 0}));
}

TEST(PackageFileTimes, AreBothThatOfASinglePacket) {
    PackageFile const file("a.pcap");
    file.addPackage(17, 29, 40);
    EXPECT_EQ(file.getBeginTime(), (Timest{17, 29}));
    EXPECT_EQ(file.getEndTime(), (Timest{17, 29}));
}

TEST(PackageFileTimes, AreThoseOfTheFirstAndTheLastPacket) {
    PackageFile const file("a.pcap");
    file.addPackage(1, 10, 40);
    file.addPackage(2, 20, 80);
    file.addPackage(3, 30, 120);
    EXPECT_EQ(file.getBeginTime(), (Timest{1, 10}));
    EXPECT_EQ(file.getEndTime(), (Timest{3, 30}));
}

TEST(PackageFileTimes, AreNotSorted) {
    PackageFile const file("a.pcap");
    file.addPackage(9, 0, 40);
    file.addPackage(1, 0, 80);
    EXPECT_EQ(file.getBeginTime(), (Timest{9, 0}));
    EXPECT_EQ(file.getEndTime(), (Timest{1, 0}));
}

TEST(PackageFileAddPackage, AppendsAtTheBack) {
    PackageFile const file("a.pcap");
    file.addPackage(1, 2, 3);
    file.addPackage(4, 5, 6);
    ASSERT_EQ(file.packages.size(), 2U);
    EXPECT_EQ(file.packages[0].time, (Timest{1, 2}));
    EXPECT_EQ(file.packages[0].position, 3U);
    EXPECT_EQ(file.packages[1].time, (Timest{4, 5}));
    EXPECT_EQ(file.packages[1].position, 6U);
}

TEST(PackageFileAddPackage, KeepsDecreasingTimesAndDuplicatesInTheOrderOfAdding) {
    PackageFile const file("a.pcap");
    std::vector<std::tuple<unsigned, unsigned, unsigned long>> const packets{
        {5, 0, 100}, {4, 9, 90}, {4, 8, 95}, {4, 8, 95}, {9, 0, 1}, {0, 0, 0}};
    for (auto const& [seconds, nanoseconds, position] : packets) {
        file.addPackage(seconds, nanoseconds, position);
    }
    std::vector<std::tuple<unsigned, unsigned, unsigned long>> stored;
    for (Package const& package : file.packages) {
        stored.emplace_back(package.time.seconds, package.time.nanoseconds, package.position);
    }
    EXPECT_EQ(stored, packets);
}

TEST(PackageFileAddPackage, KeepsEveryValueAsItIs) {
    PackageFile const file("a.pcap");
    file.addPackage(1, 1'000'000'000, 0);
    file.addPackage(kMax, kMax, std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(file.packages[0].time, (Timest{1, 1'000'000'000}));
    EXPECT_EQ(file.packages[1].time, (Timest{kMax, kMax}));
    EXPECT_EQ(file.packages[1].position, std::numeric_limits<std::uint64_t>::max());
}

TEST(PackageFileAddPackage, NeverMovesAStoredPacket) {
    PackageFile const file("a.pcap");
    std::vector<Package const*> stored;
    for (std::uint32_t i = 0; i < 100'000; ++i) {
        file.addPackage(i, i + 1, i + 2UL);
        stored.push_back(&file.packages.back());
    }
    for (std::uint32_t i = 0; i < stored.size(); ++i) {
        ASSERT_EQ(stored[i], &file.packages[i]);
        ASSERT_EQ(stored[i]->time, (Timest{i, i + 1}));
        ASSERT_EQ(stored[i]->position, i + 2UL);
    }
}

TEST(PackageFileHash, IsZeroForTheEmptyName) {
    EXPECT_EQ(Hash{}(PackageFile()), 0U);
    EXPECT_EQ(Hash{}(PackageFile("")), 0U);
}

RC_GTEST_PROP(PackageFileHash, IsThatOfTheName, (std::string const& name)) {
    RC_ASSERT(Hash{}(PackageFile(name)) == (name.empty() ? 0 : std::hash<std::string>{}(name)));
}

TEST(PackageFileHash, DoesNotLookAtThePackets) {
    PackageFile const empty("a.pcap");
    PackageFile const filled("a.pcap");
    filled.addPackage(1, 2, 3);
    EXPECT_EQ(Hash{}(empty), Hash{}(filled));
    EXPECT_TRUE(Equal{}(empty, filled));
}

TEST(PackageFileEqual, ComparesWithANameOnEitherSide) {
    PackageFile const file("a.pcap");
    Equal const areEqual;
    EXPECT_TRUE(areEqual(file, std::string_view("a.pcap")));
    EXPECT_TRUE(areEqual(std::string_view("a.pcap"), file));
    EXPECT_FALSE(areEqual(file, std::string_view("b.pcap")));
    EXPECT_FALSE(areEqual(std::string_view("b.pcap"), file));
}

TEST(PackageFileEqual, ComparesTheNameOctetForOctet) {
    EXPECT_TRUE(Equal{}(PackageFile("a.pcap"), PackageFile("a.pcap")));
    EXPECT_FALSE(Equal{}(PackageFile("a.pcap"), PackageFile("A.pcap")));
    EXPECT_FALSE(Equal{}(PackageFile("a.pcap"), PackageFile("a.pcap ")));
    EXPECT_FALSE(Equal{}(PackageFile("a.pcap"), PackageFile("./a.pcap")));
    EXPECT_FALSE(Equal{}(PackageFile(std::string("a\0b", 3)), PackageFile(std::string("a\0c", 3))));
    EXPECT_FALSE(Equal{}(PackageFile(std::string("a\0", 2)), PackageFile("a")));
}

TYPED_TEST(StreamAddFile, StartsWithoutFiles) {
    TypeParam const stream;
    EXPECT_TRUE(stream.files.empty());
    EXPECT_EQ(stream.files.bucket_count(), Files().bucket_count());
    EXPECT_EQ(stream.files.max_load_factor(), 1.0F);
}

TYPED_TEST(StreamAddFile, AddsAnEmptyIndexOfThatName) {
    TypeParam const stream;
    PackageFile const* const file = stream.addFile("a.pcap");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->fileName, "a.pcap");
    EXPECT_TRUE(file->packages.empty());
    EXPECT_EQ(stream.files.size(), 1U);
    EXPECT_EQ(&*stream.files.begin(), file);
}

TYPED_TEST(StreamAddFile, FindsTheFileOfTheSameName) {
    TypeParam const stream;
    PackageFile const* const file = stream.addFile("a.pcap");
    file->addPackage(1, 2, 3);
    EXPECT_EQ(stream.addFile("a.pcap"), file);
    EXPECT_EQ(stream.addFile(file->fileName), file);
    EXPECT_EQ(file->packages.size(), 1U);
    EXPECT_EQ(stream.files.size(), 1U);
}

TYPED_TEST(StreamAddFile, TellsNamesApartByCase) {
    TypeParam const stream;
    EXPECT_NE(stream.addFile("a.pcap"), stream.addFile("A.pcap"));
    EXPECT_EQ(stream.files.size(), 2U);
}

TYPED_TEST(StreamAddFile, TakesNamesAsTheyAreAndNotAsPaths) {
    TypeParam const stream;
    std::set<PackageFile const*> const files{
        stream.addFile("a"),  stream.addFile("./a"), stream.addFile("a/"),
        stream.addFile("a "), stream.addFile(" a"),  stream.addFile(std::string("a\0", 2))};
    EXPECT_EQ(files.size(), 6U);
    EXPECT_EQ(stream.files.size(), 6U);
}

TYPED_TEST(StreamAddFile, AcceptsTheEmptyName) {
    TypeParam const stream;
    PackageFile const* const file = stream.addFile("");
    EXPECT_EQ(file->fileName, "");
    EXPECT_EQ(stream.files.hash_function()(*file), 0U);
    EXPECT_EQ(stream.addFile(""), file);
    EXPECT_NE(stream.addFile("a"), file);
}

TYPED_TEST(StreamAddFile, KeepsPointersWhileFilesAreAdded) {
    TypeParam const stream;
    std::vector<PackageFile const*> files;
    for (unsigned i = 0; i < 2000; ++i) {
        files.push_back(stream.addFile("capture-" + std::to_string(i)));
        files.back()->addPackage(i, 0, 0);
    }
    for (unsigned i = 0; i < files.size(); ++i) {
        ASSERT_EQ(stream.addFile("capture-" + std::to_string(i)), files[i]);
        ASSERT_EQ(files[i]->packages.size(), 1U);
        ASSERT_EQ(files[i]->packages.front().time.seconds, i);
    }
    EXPECT_EQ(stream.files.size(), files.size());
}

RC_GTEST_PROP(StreamAddFileModel, HoldsOneIndexPerName, (std::vector<std::string> const& names)) {
    Goose const goose;
    Sv const sv;
    std::set<std::string> model;
    for (std::string const& name : names) {
        model.insert(name);
        RC_ASSERT(goose.addFile(name)->fileName == name);
        RC_ASSERT(sv.addFile(name)->fileName == name);
    }
    RC_ASSERT(goose.files.size() == model.size());
    RC_ASSERT(sv.files.size() == model.size());
}

}  // namespace
}  // namespace TalTest::PackageFileTest
