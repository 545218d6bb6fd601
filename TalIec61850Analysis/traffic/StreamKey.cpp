#include <TalIec61850Analysis/traffic/JoinedHash.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Parser/wire/Octets.hpp>

namespace TalIec61850Analysis {

namespace {

std::uint64_t numberOf(std::optional<MacAddress> const& address) {
    constexpr std::uint64_t kAbsent = std::uint64_t{1} << 63U;
    return address ? TalIec61850Parser::wire::readBigEndian<std::uint64_t>(*address) : kAbsent;
}

}  // namespace

std::size_t StreamKeyHash::operator()(StreamKey const& key) const noexcept {
    detail::JoinedHash hash;
    hash.add(key.name);
    hash.add(numberOf(key.source));
    hash.add(numberOf(key.destination));
    hash.add(std::uint64_t{key.appId} << 8U | static_cast<std::uint8_t>(key.protocol));
    for (VlanKey const& vlan : key.vlans) {
        hash.add(std::uint64_t{vlan.tpid} << 16U | vlan.id);
    }
    return hash.result();
}

}  // namespace TalIec61850Analysis
