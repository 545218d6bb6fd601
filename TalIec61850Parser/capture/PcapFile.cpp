#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <TalIec61850Parser/wire/OpenMode.hpp>

namespace TalIec61850Parser {

PcapFile::PcapFile(std::string const& path)
    : std::ifstream(path, wire::openMode(path)), fileName(path) {}

}  // namespace TalIec61850Parser
