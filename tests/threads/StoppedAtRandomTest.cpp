#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "capture/Indexing.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/Station.hpp"
#include "support/TempFile.hpp"
#include "threads/Together.hpp"

// Stores of many threads are filled at once, each stopped by yet another thread wherever it happens
// to be; then indexing goes on.

namespace TalTest::StoppedAtRandomTest {
namespace {

using namespace TalIec61850Parser;

constexpr std::size_t kWorkers = 8;
constexpr std::size_t kRounds = 10;
constexpr std::size_t kRecordsPerCall = 1000;

/// Packets by stream, in the order of their lists, each by where it is.
using Lists = std::map<std::string, std::vector<std::uint64_t>>;

Lists listsOf(Db const& db) {
    Lists lists;
    auto const add = [&lists](auto const& streams) {
        for (auto const& stream : streams) {
            auto& list = lists[listing::identity(stream)];
            for (Package const& package : packagesOf(stream)) list.push_back(package.position);
        }
    };
    add(db.gooseProto.streams);
    add(db.svProto.streams);
    return lists;
}

std::vector<std::uint64_t> inFileOrder(Lists const& lists) {
    std::vector<std::uint64_t> all;
    for (auto const& [stream, list] : lists) all.insert(all.end(), list.begin(), list.end());
    std::sort(all.begin(), all.end());
    return all;
}

bool isPrefix(std::vector<std::uint64_t> const& part, std::vector<std::uint64_t> const& whole) {
    return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

/// Whether the one is what the other was at some moment of its growth.
bool isPrefix(Lists const& part, Lists const& whole) {
    return isPrefix(inFileOrder(part), inFileOrder(whole)) &&
           std::all_of(part.begin(), part.end(), [&](auto const& stream) {
               auto const found = whole.find(stream.first);
               return found != whole.end() && isPrefix(stream.second, found->second);
           });
}

/// The lists of a store to which the file was added once more.
Lists continued(Lists lists, Lists const& whole) {
    for (auto const& [stream, list] : whole) {
        auto& longer = lists[stream];
        longer.insert(longer.end(), list.begin(), list.end());
    }
    return lists;
}

/// A capture, and what the index holds of it.
struct Captured {
    Captured(CaptureVariant variant, std::uint64_t numFrames)
        : frames(numFrames), file(station(variant, numFrames)) {
        Db db;
        std::atomic<bool> const stop = false;
        PcapParser::parseFile(file.path(), db, {}, stop, {});
        whole = listsOf(db);
    }

    static Bytes station(CaptureVariant variant, std::uint64_t numFrames) {
        std::ostringstream out;
        writeStation(out, variant, numFrames);
        return text(out.str());
    }

    std::uint64_t frames;
    TempFile file;
    Lists whole;
};

/// A worker's stop flag, and when the other thread is to set it.
struct Appointment {
    enum class State { none, made, noticed, kept };

    std::atomic<bool> stop = false;
    std::atomic<State> state = State::none;
    /// How often the other thread comes by before it sets the flag.
    std::size_t passes = 0;
};

/// Sets each flag when its time has come, until all workers have gone.
void keepAppointments(std::vector<Appointment>& appointments,
                      std::atomic<std::size_t> const& working) {
    using State = Appointment::State;
    while (working != 0) {
        for (Appointment& appointment : appointments) {
            State const state = appointment.state;
            if (state != State::made && state != State::noticed) continue;
            if (appointment.passes == 0) {
                appointment.stop = true;
                appointment.state = State::kept;
            } else {
                --appointment.passes;
                appointment.state = State::noticed;
            }
        }
        std::this_thread::yield();
    }
}

/// A thread that fills a store of its own, round by round.
class Worker {
public:
    Worker(Captured const& captured, Appointment& appointment, std::uint32_t seed)
        : captured_(captured), appointment_(appointment), generator_(seed) {}

    void run() {
        for (std::size_t round = 0; round < kRounds; ++round) {
            // The first is stopped for certain, the others when it happens.
            indexUntilStopped(round == 0 ? 0 : generator_() % (1U << generator_() % 11));
            Lists const part = listsOf(db_);
            arePrefixes_ = arePrefixes_ && isPrefix(part, captured_.whole);
            wereStopped_ += part != captured_.whole ? 1U : 0U;

            std::atomic<bool> const neverStop = false;
            PcapParser::parseFile(captured_.file.path(), db_, {}, neverStop, {},
                                  {.readAhead = round % 2 == 0});
            goOn_ = goOn_ && listsOf(db_) == continued(part, captured_.whole);
            db_.clearByFileName(captured_.file.path());
            areCleared_ = areCleared_ && isEmpty(db_);
        }
    }

    [[nodiscard]] bool arePrefixes() const { return arePrefixes_; }
    [[nodiscard]] bool goOn() const { return goOn_; }
    [[nodiscard]] bool areCleared() const { return areCleared_; }
    [[nodiscard]] std::size_t wereStopped() const { return wereStopped_; }

private:
    void indexUntilStopped(std::size_t passes) {
        using State = Appointment::State;
        std::size_t callsLeft = generator_() % (captured_.frames / kRecordsPerCall);
        appointment_.passes = passes;
        appointment_.stop = false;
        PcapParser::parseFile(captured_.file.path(), db_, {}, appointment_.stop,
                              [&](double) {
                                  if (callsLeft-- != 0) return;
                                  appointment_.state = State::made;
                                  while (appointment_.state == State::made)
                                      std::this_thread::yield();
                              },
                              {.readAhead = passes % 2 == 0});
        while (appointment_.state != State::kept) std::this_thread::yield();
        appointment_.state = State::none;
    }

    Captured const& captured_;
    Appointment& appointment_;
    std::mt19937 generator_;
    Db db_;
    bool arePrefixes_ = true;
    bool goOn_ = true;
    bool areCleared_ = true;
    std::size_t wereStopped_ = 0;
};

TEST(StoppedAtRandom, StoresHoldWhatWasReadAndIndexingGoesOn) {
    std::uint32_t const seed = std::random_device()();
    std::cout << "seed " << seed << '\n';
    std::vector<Captured> captures;
    captures.reserve(3);
    captures.emplace_back(CaptureVariant::microLittle, 4 * kRecordsPerCall);
    captures.emplace_back(CaptureVariant::nanoBig, 3 * kRecordsPerCall);
    captures.emplace_back(CaptureVariant::microLittle, 2 * kRecordsPerCall);

    std::vector<Appointment> appointments(kWorkers);
    std::vector<Worker> workers;
    for (std::size_t i = 0; i < kWorkers; ++i)
        workers.emplace_back(captures[i % captures.size()], appointments[i],
                             seed + static_cast<std::uint32_t>(i));
    std::atomic<std::size_t> working = kWorkers;
    together(kWorkers + 1, [&](std::size_t i) {
        if (i == kWorkers) return keepAppointments(appointments, working);
        workers[i].run();
        --working;
    });
    for (Worker const& worker : workers) {
        EXPECT_TRUE(worker.arePrefixes());
        EXPECT_TRUE(worker.goOn());
        EXPECT_TRUE(worker.areCleared());
        EXPECT_GT(worker.wereStopped(), 0U);
    }
}

}  // namespace
}  // namespace TalTest::StoppedAtRandomTest
