// Writes the capture of a station in which much goes wrong:
// faulty-capture FILE [streams|redundancy|capture]

#include <fstream>
#include <iostream>
#include <optional>
#include <string_view>

#include "support/FaultyCaptures.hpp"

namespace {

using namespace TalTest;

std::optional<FaultyCapture> captureOf(std::string_view faults) {
    if (faults == "streams") {
        return captureOfFaultyStreams();
    }
    if (faults == "redundancy") {
        return captureOfFaultyCopies();
    }
    if (faults == "capture") {
        return captureOfFaultyRecords();
    }
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    auto const capture =
        argc == 2 || argc == 3 ? captureOf(argc == 3 ? argv[2] : "streams") : std::nullopt;
    if (!capture) {
        std::cerr << "faulty-capture: usage: faulty-capture FILE [streams|redundancy|capture]\n";
        return 1;
    }
    std::ofstream out(argv[1], std::ios::binary);
    out.write(reinterpret_cast<char const*>(capture->octets.data()),
              static_cast<std::streamsize>(capture->octets.size()));
    out.close();
    if (!out) {
        std::cerr << "faulty-capture: cannot write " << argv[1] << '\n';
        return 1;
    }
    std::cout << argv[1] << ": " << capture->frames << " frames, " << capture->octets.size()
              << " octets\n";
    return 0;
}
