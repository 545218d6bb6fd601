// What is taken back when a packet could not be added, whatever the reason.

#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/index/StreamPlace.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <stdexcept>
#include <string>

#include "index/IndexImage.hpp"

namespace TalTest::AddToStreamTest {
namespace {

using namespace TalIec61850Parser;
using detail::addToStream;
using detail::StreamPlace;

std::string const fileName = "a capture";

Goose stream(std::string const& goID) {
    Goose goose;
    goose.goID = goID;
    return goose;
}

/// Has a packet added to the stream, unless that fails on the way.
void add(Db& db, Goose const& goose, bool fails) {
    addToStream(db.gooseProto.streams, goose, fileName, [fails](StreamPlace const& place) {
        if (fails) throw std::runtime_error("no packet");
        place.file->addPackage(1, 2, 3);
        ++*place.packetCount;
    });
}

void expectNothingLeft(Db& db, Goose const& goose) {
    IndexImage const before = imageOf(db);
    EXPECT_THROW(add(db, goose, true), std::runtime_error);
    EXPECT_EQ(difference(imageOf(db), before), "");
}

TEST(AddToStream, TakesBackANewStream) {
    Db db;
    expectNothingLeft(db, stream("new"));
    add(db, stream("other"), false);
    expectNothingLeft(db, stream("new"));
}

TEST(AddToStream, TakesBackANewFileOfAnOldStream) {
    Db db;
    db.gooseProto.addGoose(stream("old"));
    expectNothingLeft(db, stream("old"));
    db.gooseProto.streams.begin()->addFile("another file")->addPackage(1, 2, 3);
    expectNothingLeft(db, stream("old"));
}

TEST(AddToStream, LeavesAnOldFileOfAnOldStream) {
    Db db;
    static_cast<void>(db.gooseProto.addGoose(stream("old")).addFile(fileName));
    expectNothingLeft(db, stream("old"));
    add(db, stream("old"), false);
    expectNothingLeft(db, stream("old"));
    EXPECT_EQ(db.gooseProto.streams.begin()->packetCount, 1U);
}

}  // namespace
}  // namespace TalTest::AddToStreamTest
