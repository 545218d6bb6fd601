#include "bench/JudgedFrames.hpp"

#include <fmt/format.h>

#include "bench/GoosePublisher.hpp"
#include "bench/SvPublisher.hpp"
#include "support/SampledValues.hpp"

namespace TalBench {

namespace {

constexpr int numEntries = 20;

std::string svID(int number) { return fmt::format("BAY{:04}MU1", number); }
std::string device(int number) { return fmt::format("BAY{:04}RELAY", number); }

TalTest::Bytes gooseFrame() {
    GooseSettings settings;
    settings.ethernet = settings.ethernet.withVlan(100);
    settings.device = device(numEntries - 1);
    return GoosePublisher(settings).send();
}

TalTest::Bytes svFrame() {
    SvSettings settings;
    settings.ethernet = TalTest::svEthernet().withVlan(100);
    settings.svID = svID(numEntries - 1);
    return SvPublisher(settings).send();
}

TalIec61850Parser::Filter byNames() {
    TalIec61850Parser::Filter filter;
    for (int number = 0; number < numEntries; ++number) {
        filter.gooseFilters.emplace_back().gocbRef = device(number) + "LD0/LLN0$GO$gcbTrip";
        auto& entry = filter.svFilters.emplace_back();
        entry.appId.reset();
        entry.svID = svID(number);
    }
    return filter;
}

}  // namespace

std::vector<JudgedFrame> judgedFrames() {
    return {
        {"goose", "judge GOOSE, no filter entry", gooseFrame(), {}, true},
        {"goose-by-names", "judge GOOSE, 20 filter entries", gooseFrame(), byNames(), true},
        {"sv", "judge SV, no filter entry", svFrame(), {}, false},
        {"sv-by-names", "judge SV, 20 filter entries", svFrame(), byNames(), false},
    };
}

}  // namespace TalBench
