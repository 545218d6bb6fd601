#include "tools/commands/ShownLayouts.hpp"

#include <TalIec61850Analysis/packet/SvView.hpp>
#include <algorithm>
#include <optional>

#include "tools/selection/FrameReader.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

/// Frames that are looked at after a packet, and before it: no more than a moment takes.
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

/// A record some way before another one, some hundred of the size of samples at most.
std::optional<CaptureRecord> recordBefore(CaptureFile& capture, CaptureRecord const& record) {
    constexpr std::uint64_t kWay = std::uint64_t{64} << 10U;
    // There the file has a head, or a block without a frame.
    constexpr std::uint64_t kFar = 4096;
    constexpr std::uint64_t kStep = 4;
    std::uint64_t const start = record.fileOffset > kWay ? record.fileOffset - kWay : 0;
    std::uint64_t const end = std::min(record.fileOffset, start + kFar);
    for (std::uint64_t offset = start; offset < end; offset += kStep) {
        if (auto const found = capture.recordAt(offset)) {
            return found;
        }
    }
    return std::nullopt;
}

/// Infers the layouts of a packet's ASDUs from those of the same streams in other frames.
class LayoutsOfPacket {
public:
    /// @param packet  must outlive this
    explicit LayoutsOfPacket(SvPacket const& packet) : packet_(packet) {
        for (AsduContent const& asdu : packet.asdus) {
            inferences_.emplace_back(asdu.seqData ? octetsOf(*asdu.seqData).size() : 0);
        }
    }

    void look(Octets frame, CaptureRecord const& record) {
        SvView const view = viewSv(frame, originOf(record));
        if (!view.header.isSv() || view.header.source != packet_.header.source ||
            view.header.appId != packet_.header.appId) {
            return;
        }
        for (AsduView const& asdu : view.asdus) {
            for (std::size_t number = 0; asdu.seqData && number < inferences_.size(); ++number) {
                if (asdu.svID == packet_.asdus[number].svID) {
                    inferences_[number].add(asdu.seqData->octets(), record.time);
                }
            }
        }
    }

    [[nodiscard]] bool areCertain() const {
        return std::all_of(inferences_.begin(), inferences_.end(),
                           [](auto const& inference) { return inference.asdus() >= kEnough; });
    }

    [[nodiscard]] AsduLayouts result() const {
        AsduLayouts layouts;
        for (LayoutInference const& inference : inferences_) {
            layouts.push_back(inference.result());
        }
        return layouts;
    }

private:
    SvPacket const& packet_;
    std::vector<LayoutInference> inferences_;
};

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
    LayoutsOfPacket layouts(packet);
    std::optional<CaptureRecord> next = record;
    for (std::size_t i = 0; next && i < kMostFrames && !layouts.areCertain(); ++i) {
        layouts.look(capture.frameOf(*next), *next);
        next = nextRecord(capture, *next);
    }
    if (!layouts.areCertain()) {
        next = recordBefore(capture, record);
    }
    for (std::size_t i = 0;
         !layouts.areCertain() && next && i < kMostFrames && next->fileOffset < record.fileOffset;
         ++i) {
        layouts.look(capture.frameOf(*next), *next);
        next = nextRecord(capture, *next);
    }
    return layouts.result();
}

}  // namespace TalIec61850Tools
