#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <functional>
#include <string_view>

namespace TalIec61850Analysis {

namespace {

/// Joins hashes; the order counts.
class KeyHash {
public:
    void add(std::uint64_t value) {
        constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15U;
        sum_ = (sum_ ^ value) * kFactor;
        sum_ ^= sum_ >> 32U;
    }
    void add(std::optional<MacAddress> const& address) {
        constexpr std::uint64_t kAbsent = std::uint64_t{1} << 63U;
        std::uint64_t value = kAbsent;
        if (address) {
            value = 0;
            for (std::uint8_t const octet : *address) {
                value = value << 8U | octet;
            }
        }
        add(value);
    }
    [[nodiscard]] std::size_t result() const { return sum_; }

private:
    std::uint64_t sum_ = 0;
};

}  // namespace

std::size_t StreamKeyHash::operator()(StreamKey const& key) const noexcept {
    KeyHash hash;
    hash.add(std::hash<std::string_view>()(key.name));
    hash.add(key.source);
    hash.add(key.destination);
    hash.add(std::uint64_t{key.appId} << 8U | static_cast<std::uint8_t>(key.protocol));
    for (VlanKey const& vlan : key.vlans) {
        hash.add(std::uint64_t{vlan.tpid} << 16U | vlan.id);
    }
    return hash.result();
}

}  // namespace TalIec61850Analysis
