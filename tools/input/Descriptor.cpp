#include "tools/input/Descriptor.hpp"

#include <fcntl.h>
#include <unistd.h>

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

}  // namespace TalIec61850Tools
