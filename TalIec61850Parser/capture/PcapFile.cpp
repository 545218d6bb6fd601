#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <filesystem>
#include <system_error>

namespace TalIec61850Parser {

namespace {

/// Opening a pipe for reading alone waits for a writer, perhaps for ever. Opened for both it
/// does not, and is then refused like anything else that cannot be sought in.
std::ios_base::openmode openMode(std::string const& path) {
    std::error_code ignored;
    bool const isPipe = std::filesystem::is_fifo(path, ignored);
    return std::ios_base::binary | std::ios_base::in |
           (isPipe ? std::ios_base::out : std::ios_base::openmode{});
}

}  // namespace

PcapFile::PcapFile(std::string const& path) : std::ifstream(path, openMode(path)), fileName(path) {}

}  // namespace TalIec61850Parser
