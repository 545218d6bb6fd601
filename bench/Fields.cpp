#include "bench/Fields.hpp"

#include <algorithm>

namespace TalBench {

Positions differences(TalTest::Bytes const& one, TalTest::Bytes const& other, std::size_t width) {
    Positions begins;
    for (std::size_t i = 0; i < one.size();) {
        bool const differs = one[i] != other[i];
        if (differs) {
            begins.push_back(i);
        }
        i += differs ? width : 1;
    }
    return begins;
}

void overwrite(TalTest::Bytes& frame, std::size_t position, TalTest::Bytes const& octets) {
    std::copy(octets.begin(), octets.end(), frame.begin() + static_cast<std::ptrdiff_t>(position));
}

void overwriteNumber(TalTest::Bytes& frame, std::size_t position, std::uint64_t value,
                     std::size_t width) {
    for (std::size_t i = width; i-- > 0; value >>= 8) {
        frame[position + i] = static_cast<std::uint8_t>(value);
    }
}

}  // namespace TalBench
