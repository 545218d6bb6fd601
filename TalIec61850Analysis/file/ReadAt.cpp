#include <fcntl.h>
#include <unistd.h>

#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Parser/wire/OpenMode.hpp>
#include <algorithm>
#include <cerrno>
#include <system_error>

namespace TalIec61850Analysis::detail {

Descriptor openToRead(std::string const& path) {
    Descriptor file(::open(path.c_str(), TalIec61850Parser::wire::kOpenFlags));
    if (!file) {
        throw std::system_error(errno, std::generic_category());
    }
    return file;
}

std::size_t readAt(Descriptor const& file, std::uint64_t fileOffset,
                   std::span<std::uint8_t> octets) {
    std::size_t size = 0;
    while (size < octets.size()) {
        ssize_t const count = ::pread(file.number(), octets.data() + size, octets.size() - size,
                                      static_cast<off_t>(fileOffset + size));
        if (count == 0) {
            break;
        }
        if (count > 0) {
            size += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category());
        }
    }
    return size;
}

TalIec61850Parser::wire::ReadOctets readFrom(Descriptor const& file, std::uint64_t fileOffset,
                                             std::uint64_t end) {
    return [&file, fileOffset, end](std::span<std::uint8_t> room) mutable {
        std::uint64_t const left = end - std::min(fileOffset, end);
        auto const wanted = static_cast<std::size_t>(std::min<std::uint64_t>(room.size(), left));
        std::size_t const count = readAt(file, fileOffset, room.first(wanted));
        fileOffset += count;
        return count;
    };
}

}  // namespace TalIec61850Analysis::detail
