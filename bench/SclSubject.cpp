#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Scl/match/MessageBinder.hpp>
#include <TalIec61850Scl/read/ReadStation.hpp>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "bench/CaptureOnDisk.hpp"
#include "bench/LargeStation.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"

namespace TalBench {

namespace {

using TalIec61850Analysis::GooseView;
using TalIec61850Analysis::viewGoose;
using TalIec61850Scl::DataSet;
using TalIec61850Scl::MessageBinder;
using TalTest::Bytes;

/// Messages of one GOOSE stream, no more than stay in the caches.
std::vector<Bytes> messagesOfOneStream(std::string const& path) {
    constexpr std::size_t kMost = 500;
    std::vector<Bytes> messages;
    std::string stream;
    for (auto const& record : TalTest::readCapture(path)) {
        std::string const name(viewGoose(record.frame).gocbRef.value_or(""));
        stream = stream.empty() ? name : stream;
        if (name == stream && messages.size() < kMost) {
            messages.push_back(record.frame);
        }
    }
    return messages;
}

/// A data set of as many members as a message has values.
DataSet dataSetOf(Bytes const& message) {
    DataSet dataSet;
    GooseView const view = viewGoose(message);
    for (auto value = view.allData->begin(); value != std::default_sentinel; ++value) {
        dataSet.members.emplace_back().path = {dataSet.entries++};
    }
    return dataSet;
}

/// Reads one message after the other, and every value of it.
/// @param binder  of their stream; null where values get no names
Race::Body eachMessage(std::vector<Bytes> const& messages, MessageBinder* binder) {
    return [&messages, binder](benchmark::State& state) {
        std::size_t next = 0;
        for ([[maybe_unused]] auto const iteration : state) {
            GooseView const view = viewGoose(messages[next]);
            next = next + 1 < messages.size() ? next + 1 : 0;
            for (auto value = view.allData->begin(); value != std::default_sentinel; ++value) {
                benchmark::DoNotOptimize(*value);
            }
            if (binder != nullptr) {
                benchmark::DoNotOptimize(binder->bind(*view.allData));
            }
        }
    };
}

void measureNames(Settings const& settings) {
    constexpr std::uint64_t kFrames = 100'000;
    CaptureOnDisk const capture(withFrames(workload("goose64"), kFrames / settings.divisor));
    std::vector<Bytes> const messages = messagesOfOneStream(capture.path());
    DataSet const dataSet = dataSetOf(messages.at(0));
    MessageBinder binder(dataSet);
    Race race("names");
    race.addShort("without", eachMessage(messages, nullptr));
    race.addShort("with", eachMessage(messages, &binder));
    auto taken = race.run(settings.rounds);
    printRatio("scl: GOOSE values with names / without", taken["with"], taken["without"]);
}

}  // namespace

void measureDescriptions(Settings const& settings) {
    measureNames(settings);
    constexpr std::size_t kOctets = 50'000'000;
    std::string const text = largeStation(kOctets / settings.divisor);
    TalTest::TempFile const file(TalTest::Bytes(text.begin(), text.end()), "station.scd");
    std::vector<std::string> const paths{file.path()};
    std::size_t const controlBlocks = TalIec61850Scl::readStation(paths).controlBlocks.size();

    Race race("scl");
    race.add("pugixml", text.size(), [&](benchmark::State& state) {
        for ([[maybe_unused]] auto const iteration : state) {
            pugi::xml_document document;
            if (!document.load_file(file.path().c_str())) {
                state.SkipWithError("not parsed");
                break;
            }
            benchmark::DoNotOptimize(document);
        }
    });
    race.add("station", text.size(), [&](benchmark::State& state) {
        for ([[maybe_unused]] auto const iteration : state) {
            auto const station = TalIec61850Scl::readStation(paths);
            if (station.controlBlocks.size() != controlBlocks || !station.diagnostics.empty()) {
                state.SkipWithError("not the station");
                break;
            }
        }
    });
    auto taken = race.run(settings.rounds);
    printRatio("scl: station of 50 MB / parsed by pugixml", taken["station"], taken["pugixml"]);
}

}  // namespace TalBench
