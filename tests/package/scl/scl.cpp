// A stranger's program: counts what the description it is given has, by the third library.

#include <TalIec61850Scl/TalIec61850Scl.hpp>
#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    using namespace TalIec61850Scl;
    StationDescription const station = readStation(std::vector<std::string>(argv + 1, argv + argc));
    std::size_t members = 0;
    for (DataSet const& dataSet : station.dataSets) {
        members += dataSet.members.size();
    }
    std::cout << "headers " << TALIEC61850SCL_VERSION << ", library " << libraryVersion() << ": "
              << station.controlBlocks.size() << " control blocks, " << members << " values\n";
}
