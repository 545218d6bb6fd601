#include "tools/commands/ShownLayouts.hpp"

#include <TalIec61850Analysis/packet/SvView.hpp>
#include <algorithm>
#include <optional>

#include "tools/selection/FrameReader.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

/// Frames that are looked at after a packet: no more than a moment takes.
constexpr std::size_t kMostFrames = 1000;
/// ASDUs of a stream that are enough.
constexpr std::size_t kEnough = 64;

/// What one ASDU tells by itself.
FoundLayout layoutOfOne(AsduContent const& asdu) {
    if (!asdu.seqData) {
        return {};
    }
    OctetString const octets = octetsOf(*asdu.seqData);
    LayoutInference inference(octets.size());
    inference.add(octets, std::nullopt);
    return inference.result();
}

/// The record after another one, if there is one close by.
std::optional<CaptureRecord> nextRecord(CaptureFile& capture, CaptureRecord const& record) {
    // Between frames are a header, and in next-generation captures padding, options, other blocks.
    constexpr std::uint64_t kFar = 512;
    constexpr std::uint64_t kStep = 4;
    std::uint64_t const end = record.frameOffset + record.capturedSize;
    for (std::uint64_t offset = end; offset < end + kFar; offset += kStep) {
        auto const next = capture.recordAt(offset);
        if (next && next->fileOffset > record.fileOffset) {
            return next;
        }
    }
    return std::nullopt;
}

}  // namespace

AsduLayouts IndexedLayouts::of(SvPacket const& packet, StreamKey const& stream) {
    AsduLayouts layouts;
    StreamKey key = stream;
    for (AsduContent const& asdu : packet.asdus) {
        key.name = asdu.svID.value_or("");
        TrafficStream const* found = index_.find(key);
        // Of streams that were not asked for there is nothing but this packet: they are taken for
        // what the one beside them is.
        found = found == nullptr ? index_.find(stream) : found;
        auto const layout = asdu.seqData && found != nullptr
                                ? layoutOf(*found, octetsOf(*asdu.seqData).size())
                                : std::nullopt;
        layouts.push_back(layout ? *layout : layoutOfOne(asdu));
    }
    return layouts;
}

std::optional<FoundLayout> IndexedLayouts::layoutOf(TrafficStream const& stream,
                                                    std::size_t dataSize) {
    auto const [known, isNew] = known_.try_emplace(&stream);
    if (isNew) {
        known->second = findLayouts(index_, stream);
    }
    auto const same =
        std::find_if(known->second.begin(), known->second.end(),
                     [&](StreamLayout const& each) { return each.dataSize == dataSize; });
    return same != known->second.end() ? std::optional(same->found) : std::nullopt;
}

AsduLayouts layoutsNear(CaptureFile& capture, CaptureRecord const& record, SvPacket const& packet) {
    std::vector<LayoutInference> inferences;
    for (AsduContent const& asdu : packet.asdus) {
        inferences.emplace_back(asdu.seqData ? octetsOf(*asdu.seqData).size() : 0);
    }
    auto const isEnough = [&] {
        return std::all_of(inferences.begin(), inferences.end(),
                           [](auto const& inference) { return inference.asdus() >= kEnough; });
    };
    std::optional<CaptureRecord> next = record;
    for (std::size_t i = 0; next && i < kMostFrames && !isEnough(); ++i) {
        auto const frame = capture.frameOf(*next);
        SvView const view = viewSv(frame, originOf(*next));
        if (view.header.isSv() && view.header.source == packet.header.source &&
            view.header.appId == packet.header.appId) {
            for (AsduView const& asdu : view.asdus) {
                for (std::size_t number = 0; number < packet.asdus.size(); ++number) {
                    bool const isSame = asdu.seqData && asdu.svID == packet.asdus[number].svID;
                    if (isSame) {
                        inferences[number].add(asdu.seqData->octets(), next->time);
                    }
                }
            }
        }
        next = nextRecord(capture, *next);
    }
    AsduLayouts layouts;
    for (LayoutInference const& inference : inferences) {
        layouts.push_back(inference.result());
    }
    return layouts;
}

}  // namespace TalIec61850Tools
