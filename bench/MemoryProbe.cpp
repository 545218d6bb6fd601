#include "bench/MemoryProbe.hpp"

#include <sstream>
#include <stdexcept>

#include "support/Process.hpp"

namespace TalBench {

namespace {

/// The lines that the program prints.
std::istringstream ask(std::vector<std::string> const& arguments) {
    std::vector<std::string> command = {TAL_MEMORY_PROBE};
    command.insert(command.end(), arguments.begin(), arguments.end());
    auto const result = TalTest::run(command);
    if (result.status != 0) {
        throw std::runtime_error("memory-probe " + arguments.front() + ": " + result.err);
    }
    return std::istringstream(result.out);
}

}  // namespace

Allocations allocationsOfIndexing(std::string const& path) {
    Allocations counted;
    ask({"allocations", path}) >> counted.all >> counted.ofDeques;
    return counted;
}

double residentPerTruePacket(std::string const& path) {
    double octets = 0;
    ask({"true-resident", path}) >> octets;
    return octets;
}

double peakOfRecordAt(std::string const& path) {
    constexpr double kMebibyte = 1 << 20U;
    double octets = 0;
    ask({"record-at", path}) >> octets;
    return octets / kMebibyte;
}

double residentPerPacket(std::string const& path) {
    double octets = 0;
    ask({"resident", path}) >> octets;
    return octets;
}

double peakOfHostile(std::string const& name, std::string const& path) {
    double octets = 0;
    ask({"hostile", name, path}) >> octets;
    return octets;
}

std::vector<std::pair<std::string, double>> allocationsOfJudging() {
    std::vector<std::pair<std::string, double>> out;
    auto lines = ask({"judge"});
    double count = 0;
    for (std::string text; lines >> count && std::getline(lines >> std::ws, text);) {
        out.emplace_back(text, count);
    }
    return out;
}

}  // namespace TalBench
