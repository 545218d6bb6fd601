#include <TalIec61850Analysis/samples/PartAttributes.hpp>
#include <TalIec61850Analysis/samples/StreamLayouts.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

/// How many ASDUs are looked at: several cycles, wherever they are.
constexpr std::uint64_t kLookedAt = 256;
/// Where fewer of one make were met, more are looked at from the first of it on.
constexpr std::size_t kFewAsdus = 64;
/// A stream of more layouts than this has none.
constexpr std::size_t kMostLayouts = 32;

/// Of each so many packets, the first is looked at.
std::uint64_t stepOf(TrafficStream const& stream) {
    return std::max<std::uint64_t>(stream.size() / kLookedAt, 1);
}

}  // namespace

StreamLayouts::StreamLayouts(TrafficIndex const& index, TrafficStream const& stream,
                             std::optional<SampleLayout> given)
    : StreamLayouts(index, stream, std::move(given), windowOf(index)) {}

StreamLayouts::StreamLayouts(TrafficIndex const& index, TrafficStream const& stream,
                             std::optional<SampleLayout> given,
                             std::shared_ptr<CaptureWindow> window)
    : index_(index),
      stream_(stream),
      given_(std::move(given)),
      asdus_(index, stream, std::move(window)) {}

template <typename Visit>
void StreamLayouts::visitSome(Visit const& visit) {
    PartAttributes attributes(index_, stream_);
    std::uint64_t const step = stepOf(stream_);
    std::uint64_t next = 0;  // counted from the first packet of the part
    for (std::uint32_t part = 0; part < stream_.parts.size(); ++part) {
        PacketColumns const& packets = stream_.parts[part].packets;
        for (; next < packets.size(); next += step) {
            PacketRef const ref{.part = part, .packet = static_cast<std::uint32_t>(next)};
            if (!packets.flags()[next].isCut()) {
                visit(ref, attributes.at(ref), asdus_.read(ref));
            }
        }
        next -= packets.size();
    }
}

/// Reads the first ASDU of each make that is wanted.
template <typename IsWanted, typename Visit>
void StreamLayouts::visitChanges(IsWanted const& isWanted, Visit const& visit) {
    for (std::uint32_t part = 0; part < stream_.parts.size(); ++part) {
        for (AttributeChange const& change : stream_.parts[part].changes) {
            PacketRef const ref{.part = part, .packet = change.firstPacket};
            StreamAttributes const& attributes = index_.attributes(stream_.parts[part], change);
            bool const isCut = stream_.parts[part].packets.flags()[ref.packet].isCut();
            if (!isCut && isWanted(attributes)) {
                visit(ref, attributes, asdus_.read(ref));
            }
        }
    }
}

/// Reads ASDUs from a packet on, but for those that `visitSome` reads.
template <typename Visit>
void StreamLayouts::visitFrom(PacketRef first, Visit const& visit) {
    PartAttributes attributes(index_, stream_);
    std::uint64_t const step = stepOf(stream_);
    std::uint64_t before = 0;  // packets of the parts before
    for (std::uint32_t part = 0; part < first.part; ++part) {
        before += stream_.parts[part].packets.size();
    }
    PacketRef ref = first;
    for (std::uint64_t left = kLookedAt; left > 0 && ref.part < stream_.parts.size();) {
        PacketColumns const& packets = stream_.parts[ref.part].packets;
        if (ref.packet >= packets.size()) {
            before += packets.size();
            ref = {.part = ref.part + 1, .packet = 0};
            continue;
        }
        if ((before + ref.packet) % step != 0 && !packets.flags()[ref.packet].isCut()) {
            visit(ref, attributes.at(ref), asdus_.read(ref));
        }
        ++ref.packet;
        --left;
    }
}

FoundLayout StreamLayouts::infer(LayoutKey const& key, PacketRef first) {
    LayoutInference inference(key.size);
    auto const look = [&](PacketRef ref, StreamAttributes const& attributes, ReadAsdu const& asdu) {
        if (LayoutKey{.size = asdu.data.size(), .attributes = &attributes} == key) {
            inference.add(asdu.data, stream_.parts[ref.part].packets.time(ref.packet));
        }
    };
    visitSome(look);
    if (inference.asdus() < kFewAsdus) {
        visitFrom(first, look);
    }
    return inference.result();
}

FoundLayout const& StreamLayouts::of(LayoutKey const& key, PacketRef first) {
    auto const known = std::find_if(known_.begin(), known_.end(),
                                    [&](Known const& layout) { return layout.key == key; });
    if (known != known_.end()) {
        return known->layout;
    }
    if (given_ && given_->size() == key.size) {
        known_.push_back({.key = key, .layout = {.layout = given_, .source = LayoutSource::given}});
    } else if (known_.size() < kMostLayouts && key.size != 0) {
        known_.push_back({.key = key, .layout = infer(key, first)});
    } else {
        return unknown_;
    }
    return known_.back().layout;
}

std::vector<StreamLayout> StreamLayouts::all() {
    struct Met {
        LayoutKey key;
        PacketRef first;
    };
    std::vector<Met> met;
    auto const look = [&](PacketRef ref, StreamAttributes const& attributes, ReadAsdu const& asdu) {
        LayoutKey const key{.size = asdu.data.size(), .attributes = &attributes};
        bool const isKnown =
            std::any_of(met.begin(), met.end(), [&](Met const& each) { return each.key == key; });
        if (!isKnown && met.size() < kMostLayouts) {
            met.push_back({.key = key, .first = ref});
        }
    };
    visitSome(look);
    visitChanges(
        [&](StreamAttributes const& attributes) {
            return met.size() < kMostLayouts &&
                   std::none_of(met.begin(), met.end(), [&](Met const& each) {
                       return each.key ==
                              LayoutKey{.size = each.key.size, .attributes = &attributes};
                   });
        },
        look);
    std::vector<StreamLayout> layouts;
    layouts.reserve(met.size());
    for (Met const& each : met) {
        layouts.push_back({.dataSize = each.key.size, .found = of(each.key, each.first)});
    }
    return layouts;
}

bool StreamLayouts::haveTimes() {
    if (!haveTimes_) {
        bool found = false;
        visitSome([&](PacketRef /*ref*/, StreamAttributes const& /*attributes*/,
                      ReadAsdu const& asdu) { found = found || asdu.refrTm != kNoTime; });
        haveTimes_ = found;
    }
    return *haveTimes_;
}

}  // namespace TalIec61850Analysis::detail

namespace TalIec61850Analysis {

std::vector<StreamLayout> findLayouts(TrafficIndex const& index, TrafficStream const& stream,
                                      std::optional<SampleLayout> given) {
    return detail::StreamLayouts(index, stream, std::move(given)).all();
}

}  // namespace TalIec61850Analysis
