#include "index/Indexing.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <atomic>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "index/PlainIndex.hpp"

namespace TalTest {

using namespace TalIec61850Parser;

void indexInto(Db& db, std::string const& path, Filter const& filter, IndexOptions const& options) {
    std::atomic<bool> const stop = false;
    PcapParser::parseFile(path, db, filter, stop, {}, options);
}

IndexImage libraryImage(std::vector<std::string> const& paths, Filter const& filter) {
    Db db;
    Db ahead;
    for (std::string const& path : paths) {
        indexInto(db, path, filter);
        indexInto(ahead, path, filter, {.readAhead = true});
    }
    IndexImage const image = imageOf(db);
    std::string const found = difference(imageOf(ahead), image);
    if (!found.empty()) throw std::logic_error("where files are read ahead: " + found);
    return image;
}

IndexImage plainImage(std::vector<std::string> const& paths, Filter const& filter) {
    PlainIndex index;
    for (std::string const& path : paths) index.addFile(path, filter);
    return index.image();
}

std::string disagreement(std::vector<std::string> const& paths, Filter const& filter) {
    return difference(libraryImage(paths, filter), plainImage(paths, filter));
}

std::map<std::uint64_t, IndexedPacket> packetsByPosition(Db const& db) {
    std::map<std::uint64_t, IndexedPacket> packets;
    auto const add = [&packets](auto const& stream, IndexedPacket packet) {
        for (PackageFile const& file : stream.files)
            for (Package const& package : file.packages) {
                packet.package = package;
                if (package.position != 0) packets.emplace(package.position, packet);
            }
    };
    for (Goose const& goose : db.gooseProto.streams) add(goose, {&goose, nullptr, {}});
    for (Sv const& sv : db.svProto.streams) add(sv, {nullptr, &sv, {}});
    return packets;
}

ScratchFile::ScratchFile(Bytes const& content) : descriptor_(memfd_create("capture", MFD_CLOEXEC)) {
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
    path_ = "/proc/self/fd/" + std::to_string(descriptor_);
    assign(content);
}

ScratchFile::~ScratchFile() { close(descriptor_); }

void ScratchFile::assign(Bytes const& content) {
    auto const size = static_cast<ssize_t>(content.size());
    bool const written = pwrite(descriptor_, content.data(), content.size(), 0) == size &&
                         ftruncate(descriptor_, size) == 0;
    if (!written) throw std::system_error(errno, std::generic_category(), "scratch file");
}

}  // namespace TalTest
