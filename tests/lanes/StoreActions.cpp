#include "lanes/StoreActions.hpp"

#include <TalIec61850Parser/store/Db.hpp>
#include <cstddef>
#include <memory>
#include <random>
#include <utility>

namespace TalTest {

using namespace TalIec61850Parser;

namespace {

/// Does something with the streams of both protocols.
template <typename Action>
void withStreams(Db& db, Action const& action) {
    action(db.gooseProto.streams);
    action(db.svProto.streams);
}

/// The file that is being indexed, once a packet of it is in the store; otherwise none.
std::string fileIn(Db& db) {
    std::string name;
    withStreams(db, [&name](auto const& streams) {
        if (!streams.empty() && !streams.begin()->files.empty())
            name = streams.begin()->files.begin()->fileName;
    });
    return name;
}

void clear(WatchedStore& store, int /*call*/) { store.db.clear(); }

void clearFile(WatchedStore& store, int /*call*/) { store.db.clearByFileName(fileIn(store.db)); }

void eraseOneStream(WatchedStore& store, int /*call*/) {
    withStreams(store.db, [](auto& streams) {
        if (!streams.empty()) streams.erase(streams.begin());
    });
}

void eraseFilesOfOneStream(WatchedStore& store, int /*call*/) {
    withStreams(store.db, [](auto& streams) {
        if (!streams.empty()) streams.begin()->files.clear();
    });
}

/// Many, so that the table of streams grows.
void addStreams(WatchedStore& store, int call) {
    constexpr std::uint64_t count = 14;
    for (std::uint64_t i = 0; i < count; ++i) {
        Goose goose;
        goose.appId = 1'000'000 + static_cast<std::uint64_t>(call) * count + i;
        static_cast<void>(store.db.gooseProto.addGoose(std::move(goose)).addFile("another"));
        Sv sv;
        sv.appId = 1'000'000 + static_cast<std::uint64_t>(call) * count + i;
        static_cast<void>(store.db.svProto.addSv(std::move(sv)).addFile("another"));
    }
}

void addFiles(WatchedStore& store, int call) {
    withStreams(store.db, [call](auto& streams) {
        for (auto const& stream : streams)
            for (int i = 0; i < 6; ++i)
                static_cast<void>(
                    stream.addFile("file " + std::to_string(call) + " " + std::to_string(i)));
    });
}

void resetStatistics(WatchedStore& store, int /*call*/) {
    for (Goose const& stream : store.db.gooseProto.streams) stream.packetCount = 0;
    for (Sv const& stream : store.db.svProto.streams)
        stream.packetCount = stream.maxSmpCnt = stream.smpRate = 0;
}

void moveOut(WatchedStore& store, int /*call*/) {
    store.aside.push_back(std::move(store.db));
    store.db = Db();
}

/// The same streams, elsewhere in memory.
void replaceByCopy(WatchedStore& store, int /*call*/) {
    Db copy = store.db;
    store.db = std::move(copy);
}

void swapWithOneAside(WatchedStore& store, int /*call*/) {
    if (store.aside.empty()) store.aside.emplace_back();
    std::swap(store.db, store.aside.front());
}

}  // namespace

std::vector<StoreAction> const& storeActions() {
    static std::vector<StoreAction> const actions = {
        {"nothing", watch},
        {"clear", clear},
        {"clear file", clearFile},
        {"erase a stream", eraseOneStream},
        {"erase files of a stream", eraseFilesOfOneStream},
        {"add streams", addStreams},
        {"add files", addFiles},
        {"reset statistics", resetStatistics},
        {"move out", moveOut},
        {"replace by copy", replaceByCopy},
        {"swap", swapWithOneAside},
    };
    return actions;
}

ProgressAction randomActions(std::uint32_t seed) {
    return [seed](WatchedStore& store, int call) {
        std::minstd_rand random(seed + static_cast<std::uint32_t>(call));
        random.discard(2);
        auto const& actions = storeActions();
        actions[random() % actions.size()].act(store, call);
    };
}

}  // namespace TalTest
