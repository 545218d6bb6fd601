#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <TalIec61850Scl/read/FileOctets.hpp>
#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace TalIec61850Scl::detail {

FileOctets copyOctets(std::string_view octets) {
    FileOctets copy;
    copy.octets = std::make_unique_for_overwrite<char[]>(octets.size());
    copy.size = octets.size();
    std::copy(octets.begin(), octets.end(), copy.octets.get());
    return copy;
}

FileOctets loadFile(std::string const& path) {
    auto const fail = [&] { throw std::system_error(errno, std::generic_category(), path); };
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): as the system has it
    TalIec61850Analysis::Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (!file || ::fstat(file.number(), &status) != 0) {
        fail();
    }
    // Of a pipe the size is not known; one octet more shows the end of a file.
    constexpr std::size_t kLeast = std::size_t{1} << 16U;
    std::size_t room =
        std::max(static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1, kLeast);
    FileOctets read{.octets = std::make_unique_for_overwrite<char[]>(room), .size = 0};
    while (true) {
        if (read.size == room) {
            room *= 2;
            auto larger = std::make_unique_for_overwrite<char[]>(room);
            std::copy_n(read.octets.get(), read.size, larger.get());
            read.octets = std::move(larger);
        }
        ssize_t const got = ::read(file.number(), read.octets.get() + read.size, room - read.size);
        if (got < 0 && errno != EINTR) {
            fail();
        }
        if (got == 0) {
            return read;
        }
        read.size += static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    }
}

}  // namespace TalIec61850Scl::detail
