#include <unistd.h>

#include <TalIec61850Analysis/file/Descriptor.hpp>

namespace TalIec61850Analysis {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    Descriptor closed(std::exchange(number_, std::exchange(other.number_, -1)));
    return *this;
}

Descriptor::~Descriptor() {
    if (number_ >= 0) {
        ::close(number_);
    }
}

}  // namespace TalIec61850Analysis
