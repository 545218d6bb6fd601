#include <TalIec61850Scl/match/MatchStreams.hpp>
#include <TalIec61850Scl/match/WireName.hpp>
#include <algorithm>
#include <array>
#include <span>
#include <unordered_map>
#include <utility>

namespace TalIec61850Scl {

namespace {

using TalIec61850Analysis::StreamKey;
using TalIec61850Analysis::StreamKeyHash;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficStream;

using KeyPointers = std::vector<StreamKey const*>;

/// Parts of a key.
struct KeyParts {
    bool name = false;
    bool address = false;
    bool vlan = false;
};

/// One way to look for control blocks.
struct MatchRound {
    MatchedBy by = MatchedBy::name;
    /// What stream and control block have in common.
    KeyParts key = {};
    /// Streams that have this in common too are of one control block.
    KeyParts group = {};
};

/// One after the other, each for streams that have no control block yet.
constexpr std::array<MatchRound, 4> kRounds = {{
    {.by = MatchedBy::name,
     .key = {.name = true, .address = true, .vlan = true},
     .group = {.name = true, .address = true, .vlan = true}},
    {.by = MatchedBy::name,
     .key = {.name = true, .address = true},
     .group = {.name = true, .address = true, .vlan = true}},
    {.by = MatchedBy::name, .key = {.name = true}, .group = {.name = true, .address = true}},
    {.by = MatchedBy::address, .key = {.address = true}, .group = {.name = true, .address = true}},
}};

/// Some parts of a key, the others as by default. The hash of keys is another in each run, so that
/// nobody makes names that share one.
StreamKey partsOf(StreamKey const& key, KeyParts parts) {
    StreamKey made;
    made.protocol = key.protocol;
    if (parts.name) {
        made.name = key.name;
    }
    if (parts.address) {
        made.destination = key.destination;
        made.appId = key.appId;
    }
    if (parts.vlan && !key.vlans.empty() && key.vlans.back().id != 0) {
        made.vlans.push_back({.id = key.vlans.back().id});
    }
    return made;
}

/// Whether a key has these parts; the VLAN may be none.
bool hasParts(StreamKey const& key, KeyParts parts) {
    return !(parts.name && key.name.empty()) && !(parts.address && !key.destination);
}

/// Whether two keys have these parts, and both the same.
bool hasInCommon(StreamKey const& one, StreamKey const& other, KeyParts parts) {
    return hasParts(one, parts) && hasParts(other, parts) &&
           partsOf(one, parts) == partsOf(other, parts);
}

/// What the streams of a control block have for a key. Without MAC or APPID, it has no address.
StreamKey describedKey(ControlBlock const& block) {
    StreamKey made;
    made.protocol = block.protocol;
    if (block.address.mac && block.address.appId) {
        made.destination = block.address.mac;
        made.appId = *block.address.appId;
    }
    made.vlans.push_back({.id = block.address.vlanId.value_or(0)});
    made.name = detail::wireNameOf(block);
    return made;
}

/// Control blocks that share a name, or an address.
class SharedBlocks {
public:
    void add(StreamKey const& key, std::size_t block) { byKey_[key].blocks.push_back(block); }

    /// The first one of a key that is not taken; where all are, the first one.
    std::optional<std::size_t> find(StreamKey const& key, std::vector<bool> const& isTaken) {
        auto const found = byKey_.find(key);
        if (found == byKey_.end()) {
            return std::nullopt;
        }
        auto& [blocks, next] = found->second;
        while (next < blocks.size() && isTaken[blocks[next]]) {
            ++next;
        }
        return next < blocks.size() ? blocks[next] : blocks.front();
    }

private:
    struct Shared {
        std::vector<std::size_t> blocks;
        /// What is before it is taken, and stays so.
        std::size_t next = 0;
    };

    std::unordered_map<StreamKey, Shared, StreamKeyHash> byKey_;
};

class StreamMatcher {
public:
    StreamMatcher(KeyPointers keys, StationDescription const& station)
        : keys_(std::move(keys)),
          blocks_(station.controlBlocks),
          matches_(keys_.size()),
          isTaken_(blocks_.size(), false) {}

    std::vector<std::optional<StreamMatch>> run() {
        for (MatchRound const& round : kRounds) {
            match(round);
        }
        return std::move(matches_);
    }

private:
    void match(MatchRound const& round) {
        SharedBlocks blocks = blocksFor(round);
        std::unordered_map<StreamKey, std::size_t, StreamKeyHash> found;
        for (std::size_t stream = 0; stream < keys_.size(); ++stream) {
            StreamKey const& key = *keys_[stream];
            if (matches_[stream] || !hasParts(key, round.key)) {
                continue;
            }
            StreamKey const group = partsOf(key, round.group);
            auto const known = found.find(group);
            auto const block = known != found.end()
                                   ? std::optional(known->second)
                                   : blocks.find(partsOf(key, round.key), isTaken_);
            if (block) {
                found.try_emplace(group, *block);
                take(stream, *block, round.by);
            }
        }
    }

    /// By address, only those that have no stream by their names.
    [[nodiscard]] SharedBlocks blocksFor(MatchRound const& round) const {
        SharedBlocks blocks;
        for (std::size_t block = 0; block < blocks_.size(); ++block) {
            StreamKey const key = describedKey(blocks_[block]);
            if (hasParts(key, round.key) && !(round.by == MatchedBy::address && isTaken_[block])) {
                blocks.add(partsOf(key, round.key), block);
            }
        }
        return blocks;
    }

    void take(std::size_t stream, std::size_t block, MatchedBy by) {
        matches_[stream] = {.controlBlock = block, .by = by};
        isTaken_[block] = true;
    }

    KeyPointers keys_;
    std::vector<ControlBlock> const& blocks_;
    std::vector<std::optional<StreamMatch>> matches_;
    /// By control block: whether it has a stream.
    std::vector<bool> isTaken_;
};

}  // namespace

std::vector<std::optional<StreamMatch>> matchStreams(TrafficIndex const& index,
                                                     StationDescription const& station) {
    KeyPointers keys;
    keys.reserve(index.streams().size());
    for (TrafficStream const& stream : index.streams()) {
        keys.push_back(&stream.key);
    }
    return StreamMatcher(std::move(keys), station).run();
}

std::vector<std::optional<StreamMatch>> matchStreams(std::span<StreamKey const> streams,
                                                     StationDescription const& station) {
    KeyPointers keys;
    keys.reserve(streams.size());
    for (StreamKey const& key : streams) {
        keys.push_back(&key);
    }
    return StreamMatcher(std::move(keys), station).run();
}

std::optional<StreamMatch> matchStream(StreamKey const& stream, StationDescription const& station) {
    for (MatchRound const& round : kRounds) {
        std::optional<StreamMatch> match;
        for (std::size_t block = 0; block < station.controlBlocks.size(); ++block) {
            if (!hasInCommon(stream, describedKey(station.controlBlocks[block]), round.key)) {
                continue;
            }
            if (match) {
                return std::nullopt;
            }
            match = StreamMatch{.controlBlock = block, .by = round.by};
            if (round.by == MatchedBy::name) {
                break;
            }
        }
        if (match) {
            return match;
        }
    }
    return std::nullopt;
}

bool mayBeOf(StreamKey const& stream, ControlBlock const& block) {
    StreamKey const described = describedKey(block);
    return std::any_of(kRounds.begin(), kRounds.end(), [&](MatchRound const& round) {
        return hasInCommon(stream, described, round.key);
    });
}

}  // namespace TalIec61850Scl
