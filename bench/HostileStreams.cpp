// Streams in numbers that no station has.

#include <fmt/format.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <atomic>
#include <utility>

#include "bench/HostileInput.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalBench {

using TalIec61850Parser::Filter;
using TalTest::Bytes;

namespace {

constexpr std::uint64_t manyStreams = 200'000;

Bytes ownGoose(std::uint64_t number) {
    TalTest::GooseMessage message;
    message.gocbRef = fmt::format("BAY{:06}LD0/LLN0$GO$gcbTrip", number);
    return gooseFrame({}, message);
}

Bytes ownSv(std::uint64_t number) {
    return svFrame(TalTest::svEthernet(),
                   TalTest::message92le(fmt::format("BAY{:06}MU1", number), 0));
}

/// A name whose text is three times its size.
Bytes longNamed(std::uint64_t number) {
    constexpr std::size_t nameSize = 60'000;
    std::string name = fmt::format("{:06}", number);
    name.resize(nameSize, '\x01');
    TalTest::GooseMessage message;
    message.gocbRef = name;
    return gooseFrame({}, message);
}

/// GooseHash takes the exclusive-or of the names' hashes: two that are equal cancel.
Bytes colliding(std::uint64_t number) {
    TalTest::GooseMessage message;
    message.gocbRef = fmt::format("BAY{:06}", number);
    message.datSet = message.gocbRef;
    return gooseFrame({}, message);
}

HostileInput collisions(std::uint64_t streams, int maxRounds) {
    return {.name = fmt::format("goose-{}-of-one-hash", streams),
            .write = writesFrames(streams, colliding),
            .use = indexes(streams, streams),
            .maxRounds = maxRounds};
}

constexpr std::uint64_t mostCollisions = 40'000;

HostileInput filteredCollisions(std::string name, Filter const& filter, HostileLimits limits) {
    return {.name = std::move(name),
            .write = writesFrames(mostCollisions, colliding),
            .use = indexes(0, 0, filter),
            .limits = limits};
}

Filter onlyAppId(std::uint16_t appId) {
    Filter filter;
    filter.gooseFilters.emplace_back().appId = appId;
    return filter;
}

Filter onlySource(std::string const& address) {
    Filter filter;
    auto& entry = filter.gooseFilters.emplace_back();
    entry.appId.reset();
    entry.srcMac = address;
    return filter;
}

/// A progress call that finds it takes too long ends it: here the fourth, before record 3000.
void indexUntilStopped(std::string const& path) {
    TalIec61850Parser::Db db;
    std::atomic<bool> stop = false;
    int calls = 0;
    TalIec61850Parser::PcapParser::parseFile(path, db, {}, stop,
                                             [&](double) { stop = ++calls == 4; });
    requireSo(calls == 4 && db.gooseProto.getGooseCount() == 3001, "the stop flag does not stop");
}

}  // namespace

void addStreamInputs(std::vector<HostileInput>& inputs) {
    inputs.push_back({.name = "goose-streams-as-many-as-frames",
                      .write = writesFrames(manyStreams, ownGoose),
                      .use = indexes(manyStreams, manyStreams),
                      .limits = HostileLimits{.time = 330, .memory = 180}});
    inputs.push_back({.name = "sv-streams-as-many-as-frames",
                      .write = writesFrames(manyStreams, ownSv),
                      .use = indexes(manyStreams, manyStreams),
                      .limits = HostileLimits{.time = 230, .memory = 170}});
    inputs.push_back({.name = "goose-names-of-60000-octets",
                      .write = writesFrames(400, longNamed),
                      .use = indexes(400, 400),
                      .limits = HostileLimits{.time = 35, .memory = 52}});
    inputs.push_back(collisions(1'000, 3));
    inputs.push_back(collisions(4'000, 3));
    inputs.push_back(collisions(10'000, 2));
    inputs.push_back(collisions(mostCollisions, 1));
    inputs.push_back(filteredCollisions("goose-of-one-hash-filter-on-appid", onlyAppId(0x0002),
                                        {.time = 1.2, .memory = 1}));
    inputs.push_back(filteredCollisions("goose-of-one-hash-filter-on-source",
                                        onlySource("02:00:00:00:00:99"),
                                        {.time = 1.2, .memory = 1}));
    inputs.push_back({.name = "goose-of-one-hash-stopped-at-3000",
                      .write = writesFrames(mostCollisions, colliding),
                      .use = indexUntilStopped,
                      .limits = HostileLimits{.time = 160, .memory = 22}});
}

}  // namespace TalBench
