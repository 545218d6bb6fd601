#include <TalIec61850Parser/capture/ElementFile.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <TalIec61850Parser/codec/ShortLength.hpp>
#include <array>
#include <cstddef>
#include <istream>

namespace TalIec61850Parser::detail {

namespace {

bool readOctets(std::istream& file, std::uint8_t* octets, std::size_t count) {
    file.read(reinterpret_cast<char*>(octets), static_cast<std::streamsize>(count));
    return file.good();
}

}  // namespace

std::optional<std::vector<std::uint8_t>> readElementContent(std::string const& fileName,
                                                            std::uint64_t position,
                                                            std::uint8_t tag) {
    PcapFile file(fileName);
    file.seekg(static_cast<std::streamoff>(position));
    std::array<std::uint8_t, 4> header{};
    if (!readOctets(file, header.data(), 2) || header[0] != tag) {
        return std::nullopt;
    }
    auto const further = furtherLengthOctets(header[1]);
    if (!further || !readOctets(file, &header[2], *further)) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> content(readShortLength(header, 1)->length);
    if (!readOctets(file, content.data(), content.size())) {
        return std::nullopt;
    }
    return content;
}

}  // namespace TalIec61850Parser::detail
