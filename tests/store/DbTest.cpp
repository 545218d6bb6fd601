#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Parser/store/Db.hpp>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace TalTest::DbTest {
namespace {

using TalIec61850Parser::Db;
using TalIec61850Parser::Goose;
using TalIec61850Parser::GooseProto;
using TalIec61850Parser::PackageFile;
using TalIec61850Parser::Sv;
using TalIec61850Parser::SvProto;

static_assert(std::is_same_v<decltype(Db::gooseProto), GooseProto>);
static_assert(std::is_same_v<decltype(Db::svProto), SvProto>);
static_assert(
    std::is_same_v<decltype(std::declval<GooseProto&>().addGoose(Goose())), Goose const&>);
static_assert(std::is_same_v<decltype(std::declval<SvProto&>().addSv(Sv())), Sv const&>);
static_assert(std::is_void_v<decltype(std::declval<GooseProto&>().addGoose())>);
static_assert(std::is_void_v<decltype(std::declval<SvProto&>().addSv())>);
static_assert(
    std::is_same_v<decltype(std::declval<GooseProto const&>().getGooseCount()), std::uint64_t>);
static_assert(std::is_same_v<decltype(std::declval<SvProto const&>().getSvCount()), std::uint64_t>);

/// What the two protocols name differently.
struct GooseSide {
    using Record = Goose;
    static constexpr auto kProto = &Db::gooseProto;
    static constexpr auto kName = &Goose::goID;
    static Goose const& add(Db& db, Goose&& goose) {
        return db.gooseProto.addGoose(std::move(goose));
    }
    static void addDefault(Db& db) { db.gooseProto.addGoose(); }
    static std::size_t count(Db const& db) { return db.gooseProto.getGooseCount(); }
};

struct SvSide {
    using Record = Sv;
    static constexpr auto kProto = &Db::svProto;
    static constexpr auto kName = &Sv::svID;
    static Sv const& add(Db& db, Sv&& sv) { return db.svProto.addSv(std::move(sv)); }
    static void addDefault(Db& db) { db.svProto.addSv(); }
    static std::size_t count(Db const& db) { return db.svProto.getSvCount(); }
};

template <typename Side>
typename Side::Record named(std::string const& name) {
    typename Side::Record record;
    record.*Side::kName = name;
    return record;
}

template <typename Side>
typename Side::Record const& add(Db& db, std::string const& name,
                                 std::vector<std::string> const& files = {}) {
    typename Side::Record const& stored = Side::add(db, named<Side>(name));
    for (std::string const& file : files) {
        stored.addFile(file)->addPackage(1, 2, 3);
        ++stored.packetCount;
    }
    return stored;
}

using Index = std::map<std::string, std::set<std::string>>;

/// The file names of each stream, by its name.
template <typename Side>
Index indexOf(Db const& db) {
    Index index;
    for (auto const& record : (db.*Side::kProto).streams) {
        auto& files = index[(record.*Side::kName).value_or("")];
        for (PackageFile const& file : record.files) {
            files.insert(file.fileName);
        }
    }
    return index;
}

template <typename Side>
class StreamStore : public testing::Test {
protected:
    Db db;
};
using Sides = testing::Types<GooseSide, SvSide>;
TYPED_TEST_SUITE(StreamStore, Sides);

TYPED_TEST(StreamStore, IsEmptyAtFirst) {
    auto const& streams = (this->db.*TypeParam::kProto).streams;
    EXPECT_EQ(TypeParam::count(this->db), 0U);
    EXPECT_TRUE(streams.empty());
    EXPECT_EQ(streams.max_load_factor(), 1.0F);
    EXPECT_EQ(streams.bucket_count(), std::remove_cvref_t<decltype(streams)>().bucket_count());
}

TYPED_TEST(StreamStore, StoresANewRecordWithAllItHolds) {
    auto record = named<TypeParam>("stream");
    record.packetCount = 7;
    record.addFile("a.pcap")->addPackage(1, 2, 3);
    auto const& stored = TypeParam::add(this->db, std::move(record));
    EXPECT_EQ(stored.*TypeParam::kName, "stream");
    EXPECT_EQ(stored.packetCount, 7U);
    ASSERT_EQ(stored.files.size(), 1U);
    EXPECT_EQ(stored.files.begin()->fileName, "a.pcap");
    ASSERT_EQ(stored.files.begin()->packages.size(), 1U);
    EXPECT_EQ(stored.files.begin()->packages.front().position, 3U);
    EXPECT_EQ(&*(this->db.*TypeParam::kProto).streams.begin(), &stored);
}

TYPED_TEST(StreamStore, FindsAnEqualRecordAndLeavesTheArgumentAsItWas) {
    auto const& stored = add<TypeParam>(this->db, "stream", {"a.pcap"});
    auto candidate = named<TypeParam>("stream");
    candidate.prp.emplace().lanId = 'B';
    candidate.packetCount = 55;
    candidate.addFile("b.pcap")->addPackage(9, 9, 9);
    EXPECT_EQ(&TypeParam::add(this->db, std::move(candidate)), &stored);

    EXPECT_EQ(TypeParam::count(this->db), 1U);
    EXPECT_EQ(stored.packetCount, 1U);
    EXPECT_FALSE(stored.prp.has_value());
    EXPECT_EQ(indexOf<TypeParam>(this->db), (Index{{"stream", {"a.pcap"}}}));

    // NOLINTBEGIN(bugprone-use-after-move): found, so not moved from
    EXPECT_EQ(candidate.*TypeParam::kName, "stream");
    EXPECT_EQ(candidate.prp->lanId, 'B');
    EXPECT_EQ(candidate.packetCount, 55U);
    ASSERT_EQ(candidate.files.size(), 1U);
    EXPECT_EQ(candidate.files.begin()->fileName, "b.pcap");
    EXPECT_EQ(candidate.files.begin()->packages.size(), 1U);
    // NOLINTEND(bugprone-use-after-move)
}

TYPED_TEST(StreamStore, CountsOnTheStoredRecord) {
    add<TypeParam>(this->db, "stream").packetCount += 1;
    add<TypeParam>(this->db, "other").packetCount += 1;
    add<TypeParam>(this->db, "stream").packetCount += 1;
    EXPECT_EQ(add<TypeParam>(this->db, "stream").packetCount, 2U);
    EXPECT_EQ(TypeParam::count(this->db), 2U);
}

TYPED_TEST(StreamStore, StoresADefaultRecordOnce) {
    TypeParam::addDefault(this->db);
    TypeParam::addDefault(this->db);
    EXPECT_EQ(TypeParam::count(this->db), 1U);
    auto const& stored = TypeParam::add(this->db, typename TypeParam::Record());
    EXPECT_EQ(TypeParam::count(this->db), 1U);
    EXPECT_EQ(stored.packetCount, 0U);
    EXPECT_TRUE(stored.files.empty());
}

TYPED_TEST(StreamStore, KeepsReferencesOverTenThousandInsertions) {
    std::vector<typename TypeParam::Record const*> records;
    std::vector<PackageFile const*> files;
    for (std::size_t i = 0; i < 10'000; ++i) {
        records.push_back(&add<TypeParam>(this->db, "stream " + std::to_string(i)));
        files.push_back(records.back()->addFile("a.pcap"));
    }
    EXPECT_EQ(TypeParam::count(this->db), 10'000U);
    for (std::size_t i = 0; i < records.size(); ++i) {
        std::string const name = "stream " + std::to_string(i);
        ASSERT_EQ((*records[i]).*TypeParam::kName, name);
        ASSERT_EQ(&add<TypeParam>(this->db, name), records[i]);
        ASSERT_EQ(records[i]->addFile("a.pcap"), files[i]);
    }
    EXPECT_EQ(TypeParam::count(this->db), 10'000U);
}

TYPED_TEST(StreamStore, IsEmptyAfterClearAndCanBeFilledAgain) {
    add<TypeParam>(this->db, "one", {"a.pcap", "b.pcap"});
    add<TypeParam>(this->db, "two");
    TypeParam::addDefault(this->db);
    this->db.clear();
    EXPECT_EQ(TypeParam::count(this->db), 0U);
    auto const& again = add<TypeParam>(this->db, "one");
    EXPECT_EQ(again.packetCount, 0U);
    EXPECT_TRUE(again.files.empty());
    EXPECT_EQ(TypeParam::count(this->db), 1U);
}

TYPED_TEST(StreamStore, ForgetsOneFileOfAStream) {
    auto const& stored = add<TypeParam>(this->db, "stream", {"a.pcap", "b.pcap", "b.pcap"});
    PackageFile const* const kept = stored.addFile("a.pcap");
    this->db.clearByFileName("b.pcap");
    EXPECT_EQ(indexOf<TypeParam>(this->db), (Index{{"stream", {"a.pcap"}}}));
    EXPECT_EQ(&*(this->db.*TypeParam::kProto).streams.begin(), &stored);
    EXPECT_EQ(&*stored.files.begin(), kept);
    EXPECT_EQ(kept->packages.size(), 1U);
    EXPECT_EQ(stored.packetCount, 3U);
}

TYPED_TEST(StreamStore, ForgetsAStreamWithItsOnlyFile) {
    add<TypeParam>(this->db, "only b", {"b.pcap"});
    add<TypeParam>(this->db, "only a", {"a.pcap"});
    this->db.clearByFileName("b.pcap");
    EXPECT_EQ(indexOf<TypeParam>(this->db), (Index{{"only a", {"a.pcap"}}}));
}

TYPED_TEST(StreamStore, ForgetsStreamsWithoutFilesWhateverTheName) {
    add<TypeParam>(this->db, "no file");
    add<TypeParam>(this->db, "a file", {"a.pcap"});
    TypeParam::addDefault(this->db);
    this->db.clearByFileName("unknown.pcap");
    EXPECT_EQ(indexOf<TypeParam>(this->db), (Index{{"a file", {"a.pcap"}}}));
}

TYPED_TEST(StreamStore, ForgetsNoFileOfAnotherSpelling) {
    std::vector<std::string> const files{"a.pcap",  "A.pcap", "./a.pcap",
                                         "a.pcap ", "a.pca",  std::string("a.pcap\0", 7)};
    add<TypeParam>(this->db, "stream", files);
    this->db.clearByFileName("a.pcap");
    EXPECT_EQ(indexOf<TypeParam>(this->db), (Index{{"stream", {files.begin() + 1, files.end()}}}));
    this->db.clearByFileName(files.back());
    EXPECT_EQ(indexOf<TypeParam>(this->db),
              (Index{{"stream", {files.begin() + 1, files.end() - 1}}}));
}

TYPED_TEST(StreamStore, ForgetsOnlyTheEmptyNameForAnEmptyArgument) {
    add<TypeParam>(this->db, "both", {"", "a.pcap"});
    add<TypeParam>(this->db, "empty name", {""});
    add<TypeParam>(this->db, "other name", {"a.pcap"});
    this->db.clearByFileName("");
    EXPECT_EQ(indexOf<TypeParam>(this->db),
              (Index{{"both", {"a.pcap"}}, {"other name", {"a.pcap"}}}));
}

TYPED_TEST(StreamStore, MayBeClearedByAReferenceToANameThatItHolds) {
    std::string const name = "a capture whose name lies on the heap.pcap";
    for (int i = 0; i < 50; ++i) {
        add<TypeParam>(this->db, "gone " + std::to_string(i), {name});
        add<TypeParam>(this->db, "kept " + std::to_string(i), {name, "b.pcap"});
    }
    PackageFile const* const held = (this->db.*TypeParam::kProto).streams.begin()->addFile(name);
    add<GooseSide>(this->db, "gone", {name});
    add<SvSide>(this->db, "gone", {name});
    this->db.clearByFileName(held->fileName);
    Index expected;
    for (int i = 0; i < 50; ++i) {
        expected["kept " + std::to_string(i)] = {"b.pcap"};
    }
    EXPECT_EQ(indexOf<TypeParam>(this->db), expected);
    EXPECT_EQ(GooseSide::count(this->db) + SvSide::count(this->db), 50U);
}

TYPED_TEST(StreamStore, MayBeClearedOfOneProtocolAlone) {
    add<GooseSide>(this->db, "stream", {"a.pcap"});
    add<SvSide>(this->db, "stream", {"a.pcap"});
    Db::_clearProtoByFileName("a.pcap", this->db.*TypeParam::kProto);
    EXPECT_EQ(TypeParam::count(this->db), 0U);
    EXPECT_EQ(GooseSide::count(this->db) + SvSide::count(this->db), 1U);
}

TYPED_TEST(StreamStore, FindsTheStreamsThatSurviveAClearing) {
    for (int i = 0; i < 500; ++i) {
        add<TypeParam>(this->db, std::to_string(i), {i % 3 == 0 ? "a.pcap" : "b.pcap"});
    }
    this->db.clearByFileName("b.pcap");
    EXPECT_EQ(TypeParam::count(this->db), 167U);
    for (int i = 0; i < 500; ++i) {
        EXPECT_EQ(add<TypeParam>(this->db, std::to_string(i)).packetCount, i % 3 == 0 ? 1U : 0U);
    }
    EXPECT_EQ(TypeParam::count(this->db), 500U);
}

TEST(Db, ClearsBothProtocols) {
    Db db;
    add<GooseSide>(db, "stream", {"a.pcap", "b.pcap"});
    add<SvSide>(db, "stream", {"a.pcap", "b.pcap"});
    add<SvSide>(db, "only a", {"a.pcap"});
    db.clearByFileName("a.pcap");
    EXPECT_EQ(indexOf<GooseSide>(db), (Index{{"stream", {"b.pcap"}}}));
    EXPECT_EQ(indexOf<SvSide>(db), (Index{{"stream", {"b.pcap"}}}));
    db.clear();
    EXPECT_EQ(GooseSide::count(db), 0U);
    EXPECT_EQ(SvSide::count(db), 0U);
}

TEST(Db, MayBeClearedWhileEmpty) {
    Db db;
    db.clear();
    db.clearByFileName("a.pcap");
    db.clearByFileName("");
    EXPECT_EQ(GooseSide::count(db), 0U);
    EXPECT_EQ(SvSide::count(db), 0U);
}

TEST(Db, LeavesTheStatisticsOfSvStreamsThatSurvive) {
    Db db;
    Sv const& stored = add<SvSide>(db, "stream", {"a.pcap", "b.pcap"});
    stored.maxSmpCnt = 3999;
    stored.smpRate = 80;
    stored.maxNoASDU = 8;
    db.clearByFileName("a.pcap");
    ASSERT_EQ(SvSide::count(db), 1U);
    EXPECT_EQ(stored.maxSmpCnt, 3999U);
    EXPECT_EQ(stored.smpRate, 80U);
    EXPECT_EQ(stored.maxNoASDU, 8U);
    EXPECT_EQ(stored.packetCount, 2U);
}

template <typename Side>
void followsTheModel() {
    Db db;
    Index model;
    auto const steps = *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 1000));
    for (int const step : steps) {
        std::string const stream = std::to_string(step % 4);
        std::string const file = std::string(static_cast<std::size_t>(step / 4 % 3), 'f');
        switch (step / 12 % 8) {
            case 0:
                db.clearByFileName(file);
                for (auto& [name, files] : model) {
                    files.erase(file);
                }
                std::erase_if(model, [](auto const& entry) { return entry.second.empty(); });
                break;
            case 1:
                add<Side>(db, stream);
                model[stream];
                break;
            default:
                add<Side>(db, stream, {file});
                model[stream].insert(file);
                break;
        }
        RC_ASSERT(indexOf<Side>(db) == model);
        RC_ASSERT(Side::count(db) == model.size());
    }
}

RC_GTEST_PROP(Db, HoldsTheGooseStreamsThatAModelHolds, ()) { followsTheModel<GooseSide>(); }

RC_GTEST_PROP(Db, HoldsTheSvStreamsThatAModelHolds, ()) { followsTheModel<SvSide>(); }

}  // namespace
}  // namespace TalTest::DbTest
