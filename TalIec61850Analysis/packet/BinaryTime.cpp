#include <TalIec61850Analysis/packet/BinaryTime.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>

namespace TalIec61850Analysis {

std::optional<BinaryTime> readBinaryTime(Octets octets) noexcept {
    constexpr std::size_t kTimeSize = 4;
    constexpr std::size_t kDatedSize = 6;
    if (octets.size() != kTimeSize && octets.size() != kDatedSize) {
        return std::nullopt;
    }
    BinaryTime time{.milliseconds = TalIec61850Parser::wire::readBigEndian<std::uint32_t>(octets),
                    .days = {}};
    if (octets.size() == kDatedSize) {
        time.days = TalIec61850Parser::wire::readUint16(octets, kTimeSize);
    }
    return time;
}

}  // namespace TalIec61850Analysis
