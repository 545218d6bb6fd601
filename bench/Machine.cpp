#include "bench/Machine.hpp"

#include <fmt/format.h>
#include <pcap/pcap.h>
#include <sys/utsname.h>

#include <TalIec61850Parser/Version.hpp>
#include <fstream>
#include <string>
#include <thread>

#include "bench/Passes.hpp"

namespace TalBench {

namespace {

std::string processor() {
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);) {
        if (line.starts_with("model name")) {
            return line.substr(line.find(':') + 2);
        }
    }
    return "unknown processor";
}

std::string kernel() {
    utsname name{};
    ::uname(&name);
    return fmt::format("{} {}", name.sysname, name.release);
}

std::string compiler() {
#ifdef __clang__
    return "clang++ " __clang_version__;
#else
    return "g++ " __VERSION__;
#endif
}

}  // namespace

void printMachine(Settings const& settings) {
    fmt::print("- machine: {}, {} cores, {}\n", processor(), std::thread::hardware_concurrency(),
               kernel());
    fmt::print("- TalIec61850Parser {}, {}, {}{}\n", TALIEC61850PARSER_VERSION, compiler(),
               pcap_lib_version(), hasTshark() ? "" : "; tshark is not installed: left out");
    fmt::print(
        "- medians of {} rounds{}; ns per frame, query, call or octet of the numerator\n\n",
        settings.rounds,
        settings.divisor == 1 ? "" : ", quick, processor time: the targets mean more frames");
}

}  // namespace TalBench
