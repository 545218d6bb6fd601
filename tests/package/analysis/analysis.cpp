// A stranger's program: counts the records of the capture it is given by the second library alone.

#include <TalIec61850Analysis/TalIec61850Analysis.hpp>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) {
        return 1;
    }
    using namespace TalIec61850Analysis;
    if (checkCapture(argv[1]).fault) {
        return 1;
    }
    CaptureFile capture(argv[1]);
    std::size_t count = 0;
    std::size_t octets = 0;
    while (auto const* const view = capture.next()) {
        ++count;
        octets += view->frame.size();
    }
    std::cout << "headers " << TALIEC61850ANALYSIS_VERSION << ", library " << libraryVersion()
              << ": " << count << " records, " << octets << " octets"
              << (capture.damage() ? ", damaged" : "") << "\n";
}
