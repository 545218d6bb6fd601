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

/// Where the packets of a file go, and which are wanted.
struct Selection {
    Db& db;
    Filter const& filter;
};

void indexRecords(PcapFile& file, wire::CaptureVariant variant, Selection const& selection,
                  detail::IndexControl const& control) {
    detail::FastLane lane({.fileName = file.fileName,
                           .variant = variant,
                           .filter = selection.filter,
                           .db = selection.db});
    detail::indexCapture(file, variant.isLittleEndian, control, lane);
}

}  // namespace

void PcapParser::parseFile(std::string const& fileName, Db& db, Filter const& filter,
                           std::atomic<bool> const& stopFlag,
                           std::function<void(double)> progress) {
    parseFile(fileName, db, filter, stopFlag, std::move(progress), {});
}

void PcapParser::parseFile(std::string const& fileName, Db& db, Filter const& filter,
                           std::atomic<bool> const& stopFlag, std::function<void(double)> progress,
                           IndexOptions const& options) {
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
    indexRecords(file, *variant, {.db = db, .filter = filter},
                 {.stopFlag = stopFlag,
                  .fileSize = fileSize,
                  .progress = progress,
                  .readAhead = options.readAhead});
    file.close();
}

void PcapParser::_parseFilePcap(PcapFile& file, bool isNanosecond, bool isLittleEndian, Db& db,
                                Filter const& filter, std::atomic<bool> const& stopFlag,
                                unsigned long fileSize, std::function<void(double)> progress) {
    indexRecords(file, {.isNanosecond = isNanosecond, .isLittleEndian = isLittleEndian},
                 {.db = db, .filter = filter},
                 {.stopFlag = stopFlag, .fileSize = fileSize, .progress = progress});
}

void PcapParser::_parseFilePcapNg(PcapFile& /*file*/, bool /*isNanosecond*/,
                                  bool /*isLittleEndian*/, Db& /*db*/, Filter const& /*filter*/,
                                  std::atomic<bool> const& /*stopFlag*/, unsigned long /*fileSize*/,
                                  std::function<void(double)> /*progress*/) {
    std::cout << "PcapNg not implemented" << std::endl;
}

}  // namespace TalIec61850Parser
