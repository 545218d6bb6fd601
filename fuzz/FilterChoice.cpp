#include "fuzz/FilterChoice.hpp"

#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <type_traits>

namespace TalFuzz {

using namespace TalIec61850Parser;

namespace {

constexpr unsigned kNoGoose = 0x40;
constexpr unsigned kNoSv = 0x80;
constexpr unsigned kSpoilt = 0x8000;

void spoil(std::string& text) { text += '?'; }
void spoil(bool& flag) { flag = !flag; }
template <typename Integer>
void spoil(Integer& number) {
    static_assert(std::is_integral_v<Integer>);
    number = static_cast<Integer>(number + 1U);
}
void spoil(VlanInfo& vlan) { vlan.vlanId = 4095; }
void spoil(HsrInfo& hsr) { hsr.lanId = '?'; }
void spoil(PrpInfo& prp) { prp.lanId = '?'; }

/// Leaves of an identity what a choice of bits says.
class Criteria {
public:
    explicit Criteria(std::uint16_t choice) : choice_(choice) {}

    /// Call it for one member after the other.
    template <typename Member>
    void choose(std::optional<Member>& member) {
        bool const isChosen = (choice_ >> next_++ & 1U) != 0;
        if (!isChosen) member.reset();
        if (member && (choice_ & kSpoilt) != 0) spoil(*member);
    }

    template <typename Identifer>
    void chooseLink(Identifer& id) {
        choose(id.srcMac);
        choose(id.dstMac);
        choose(id.vlan);
        choose(id.hsr);
        choose(id.prp);
        choose(id.appId);
        choose(id.reserved1Bit0);
    }

private:
    std::uint16_t choice_;
    unsigned next_ = 0;
};

GooseIdentifer criteriaOf(GooseIdentifer id, std::uint16_t choice) {
    Criteria criteria(choice);
    criteria.chooseLink(id);
    criteria.choose(id.gocbRef);
    criteria.choose(id.datSet);
    criteria.choose(id.goID);
    criteria.choose(id.simulation);
    criteria.choose(id.confRev);
    return id;
}

SvIdentifer criteriaOf(SvIdentifer id, std::uint16_t choice) {
    Criteria criteria(choice);
    criteria.chooseLink(id);
    criteria.choose(id.svID);
    criteria.choose(id.confRev);
    return id;
}

/// An entry from one of the streams; nothing without streams.
template <typename Streams, typename Identifers>
void addEntry(FuzzInput& input, Streams const& streams, bool isWanted, Identifers& entries) {
    std::uint8_t const which = input.octet();
    std::uint16_t const choice = input.number();
    if (!isWanted || streams.empty()) return;
    auto const stream =
        std::next(streams.begin(), static_cast<std::ptrdiff_t>(which % streams.size()));
    entries.push_back(criteriaOf(*stream, choice));
}

}  // namespace

Filter filterFrom(FuzzInput& input, Db const& db) {
    std::uint8_t const shape = input.octet();
    Filter filter;
    filter.parseGoose = (shape & kNoGoose) == 0;
    filter.parseSv = (shape & kNoSv) == 0;
    for (unsigned entry = 0; entry < 2; ++entry) {
        addEntry(input, db.gooseProto.streams, (shape & 3U) > entry, filter.gooseFilters);
        addEntry(input, db.svProto.streams, (shape >> 2U & 3U) > entry, filter.svFilters);
    }
    return filter;
}

}  // namespace TalFuzz
