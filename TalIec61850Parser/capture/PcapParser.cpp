#include <TalIec61850Parser/capture/CaptureIndex.hpp>
#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <algorithm>
#include <array>
#include <cstdint>
#include <iostream>
#include <optional>
#include <utility>

namespace TalIec61850Parser {

namespace {

/// The first four octets of a file, as they lie there.
using Magic = std::array<std::uint8_t, 4>;

struct Variant {
    Magic magic;
    bool isNanosecond;
    bool isLittleEndian;
};

constexpr std::array<Variant, 4> kVariants = {{
    {.magic = {0xD4, 0xC3, 0xB2, 0xA1}, .isNanosecond = false, .isLittleEndian = true},
    {.magic = {0xA1, 0xB2, 0xC3, 0xD4}, .isNanosecond = false, .isLittleEndian = false},
    {.magic = {0x4D, 0x3C, 0xB2, 0xA1}, .isNanosecond = true, .isLittleEndian = true},
    {.magic = {0xA1, 0xB2, 0x3C, 0x4D}, .isNanosecond = true, .isLittleEndian = false},
}};

constexpr Magic kNextGenerationMagic = {0x0A, 0x0D, 0x0D, 0x0A};
constexpr std::streamoff kNextGenerationByteOrderOffset = 8;

Magic readMagic(std::istream& file) {
    Magic magic{};
    file.read(reinterpret_cast<char*>(magic.data()), magic.size());
    return magic;
}

std::optional<Variant> recognise(std::istream& file) {
    Magic magic = readMagic(file);
    if (magic == kNextGenerationMagic) {
        // What stands here in such a file is its byte order mark, which is none of ours.
        file.seekg(kNextGenerationByteOrderOffset);
        magic = readMagic(file);
    }
    auto const* const found = std::find_if(kVariants.begin(), kVariants.end(),
                                           [&](auto const& v) { return v.magic == magic; });
    return found == kVariants.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

void PcapParser::parseFile(std::string const& fileName, Db& db, Filter const& filter,
                           std::atomic<bool> const& stopFlag,
                           std::function<void(double)> progress) {
    PcapFile file(fileName);
    if (!file) {
        std::cerr << "Error opening file: " << fileName << "\n";
        return;
    }
    file.seekg(0, std::ios_base::end);
    auto const fileSize = static_cast<unsigned long>(std::streamoff(file.tellg()));
    file.seekg(0);
    auto const variant = recognise(file);
    if (!variant) {
        std::cerr << "Invalid PCAP file format\n";
        return;
    }
    _parseFilePcap(file, variant->isNanosecond, variant->isLittleEndian, db, filter, stopFlag,
                   fileSize, std::move(progress));
    file.close();
}

void PcapParser::_parseFilePcap(PcapFile& file, bool isNanosecond, bool isLittleEndian, Db& db,
                                Filter const& filter, std::atomic<bool> const& stopFlag,
                                unsigned long fileSize, std::function<void(double)> progress) {
    detail::indexCapture(file, isNanosecond, isLittleEndian, db, filter, stopFlag, fileSize,
                         progress, detail::Lane::fast);
}

void PcapParser::_parseFilePcapNg(PcapFile& /*file*/, bool /*isNanosecond*/,
                                  bool /*isLittleEndian*/, Db& /*db*/, Filter const& /*filter*/,
                                  std::atomic<bool> const& /*stopFlag*/, unsigned long /*fileSize*/,
                                  std::function<void(double)> /*progress*/) {
    std::cout << "PcapNg not implemented" << std::endl;
}

}  // namespace TalIec61850Parser
