#include "tools/input/Descriptor.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace TalIec61850Tools {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
}

Descriptor::~Descriptor() {
    if (number_ >= 0) {
        ::close(number_);
    }
}

Descriptor openToRead(std::string const& path) {
    return Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
}

std::size_t readAt(Descriptor const& file, std::uint64_t position, std::span<std::uint8_t> octets) {
    std::size_t size = 0;
    while (size < octets.size()) {
        ssize_t const count = ::pread(file.number(), octets.data() + size, octets.size() - size,
                                      static_cast<off_t>(position + size));
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

}  // namespace TalIec61850Tools
