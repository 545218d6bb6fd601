#include <TalIec61850Parser/capture/OpenMode.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>

namespace TalIec61850Parser {

PcapFile::PcapFile(std::string const& path)
    : std::ifstream(path, detail::openMode(path)), fileName(path) {}

}  // namespace TalIec61850Parser
