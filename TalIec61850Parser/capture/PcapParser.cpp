#include <TalIec61850Parser/capture/IndexCapture.hpp>
#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <TalIec61850Parser/capture/lane/FastLane.hpp>
#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <cstddef>
#include <iostream>
#include <optional>
#include <utility>

namespace TalIec61850Parser {

namespace {

std::optional<wire::CaptureVariant> recognise(std::istream& file) {
    auto const magicAt = [&](std::size_t fileOffset) {
        wire::Magic magic{};
        file.seekg(static_cast<std::streamoff>(fileOffset));
        file.read(reinterpret_cast<char*>(magic.data()), magic.size());
        return magic;
    };
    return wire::recogniseCapture(magicAt).variant;
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
    detail::FastLane lane(
        {.fileName = file.fileName,
         .variant = {.isNanosecond = isNanosecond, .isLittleEndian = isLittleEndian},
         .filter = filter,
         .db = db});
    detail::indexCapture(file, isLittleEndian,
                         {.stopFlag = stopFlag, .fileSize = fileSize, .progress = progress}, lane);
}

void PcapParser::_parseFilePcapNg(PcapFile& /*file*/, bool /*isNanosecond*/,
                                  bool /*isLittleEndian*/, Db& /*db*/, Filter const& /*filter*/,
                                  std::atomic<bool> const& /*stopFlag*/, unsigned long /*fileSize*/,
                                  std::function<void(double)> /*progress*/) {
    std::cout << "PcapNg not implemented" << std::endl;
}

}  // namespace TalIec61850Parser
