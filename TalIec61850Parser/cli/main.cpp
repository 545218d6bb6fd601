// The command-line tool: indexes one capture file and reports what it holds.

#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <atomic>
#include <chrono>
#include <functional>
#include <iostream>
#include <string>

namespace {

using TalIec61850Parser::Db;
using TalIec61850Parser::Filter;

void printUsage(char const* programName) {
    std::cout << "Usage: " << programName << " <pcap_file>\n"
              << "Example: " << programName << " test.pcap\n";
}

void printProgress(double fraction) { std::cout << "Progress: " << fraction * 100.0 << "%\n"; }

template <typename Streams>
void printStreams(char const* protocol, Streams const& streams) {
    for (auto const& stream : streams) {
        std::cout << protocol << ": " << stream.dstMac.value_or("")
                  << " cnt: " << stream.packetCount << "\n";
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc <= 1) {
        printUsage(argc == 1 ? argv[0] : "");
        return 1;
    }
    std::string const fileName = argv[1];
    Db db;
    Filter const filter{.parseSv = true, .parseGoose = true, .svFilters = {}, .gooseFilters = {}};
    std::atomic<bool> const stopFlag = false;
    std::function<void(double)> const progress = printProgress;

    auto const start = std::chrono::system_clock::now();
    TalIec61850Parser::PcapParser::parseFile(fileName, db, filter, stopFlag, progress);
    std::chrono::duration<double> const elapsed = std::chrono::system_clock::now() - start;
    std::cout << "Parsing took " << elapsed.count() << " seconds\n";

    // Out before the look-up: that one ends the process where the kernel's line ends in kB.
    std::cout << "mem usage: " << std::flush;
    std::cout << cross::MemoryInfo::bytesToString(cross::MemoryInfo::getCurrentProcessMemoryUsage())
              << "\n\n";
    printStreams("sv", db.svProto.streams);
    printStreams("goose", db.gooseProto.streams);
}
