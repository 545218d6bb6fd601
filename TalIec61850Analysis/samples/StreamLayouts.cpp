#include <TalIec61850Analysis/samples/PartAttributes.hpp>
#include <TalIec61850Analysis/samples/StreamLayouts.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Analysis::detail {

namespace {

/// How many ASDUs are looked at: several cycles, wherever they are.
constexpr std::uint64_t kLookedAt = 256;
/// A stream of more layouts than this has none.
constexpr std::size_t kMostLayouts = 32;

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
    std::uint64_t const all = stream_.size();
    std::uint64_t const step = std::max<std::uint64_t>(all / kLookedAt, 1);
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

FoundLayout StreamLayouts::infer(LayoutKey const& key) {
    LayoutInference inference(key.size);
    visitSome([&](PacketRef ref, StreamAttributes const& attributes, ReadAsdu const& asdu) {
        if (LayoutKey{.size = asdu.data.size(), .attributes = &attributes} == key) {
            inference.add(asdu.data, stream_.parts[ref.part].packets.time(ref.packet));
        }
    });
    return inference.result();
}

FoundLayout const& StreamLayouts::of(LayoutKey const& key) {
    auto const known = std::find_if(known_.begin(), known_.end(),
                                    [&](Known const& layout) { return layout.key == key; });
    if (known != known_.end()) {
        return known->layout;
    }
    if (given_ && given_->size() == key.size) {
        known_.push_back({.key = key, .layout = {.layout = given_, .source = LayoutSource::given}});
    } else if (known_.size() < kMostLayouts && key.size != 0) {
        known_.push_back({.key = key, .layout = infer(key)});
    } else {
        return unknown_;
    }
    return known_.back().layout;
}

std::vector<StreamLayout> StreamLayouts::all() {
    std::vector<LayoutKey> keys;
    visitSome([&](PacketRef /*ref*/, StreamAttributes const& attributes, ReadAsdu const& asdu) {
        LayoutKey const key{.size = asdu.data.size(), .attributes = &attributes};
        bool const isKnown = std::find(keys.begin(), keys.end(), key) != keys.end();
        if (!isKnown && keys.size() < kMostLayouts) {
            keys.push_back(key);
        }
    });
    std::vector<StreamLayout> layouts;
    layouts.reserve(keys.size());
    for (LayoutKey const& key : keys) {
        layouts.push_back({.dataSize = key.size, .found = of(key)});
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
