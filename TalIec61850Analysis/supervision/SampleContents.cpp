#include <TalIec61850Analysis/samples/AsduReader.hpp>
#include <TalIec61850Analysis/samples/PacketCourse.hpp>
#include <TalIec61850Analysis/samples/PartAttributes.hpp>
#include <TalIec61850Analysis/samples/StreamLayouts.hpp>
#include <TalIec61850Analysis/supervision/FindingValues.hpp>
#include <TalIec61850Analysis/supervision/SampleContents.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

namespace {

/// The bits of a quality word that say anything against a value: all but `derived`.
constexpr std::uint32_t kFaults = ~0x2000U;
/// ASDUs between two looks at whether to stop.
constexpr std::uint64_t kPatience = 0xFFFF;

/// @param octets  four of them, the most significant first
std::uint32_t wordAt(std::uint8_t const* octets) {
    return std::uint32_t{octets[0]} << 24U | std::uint32_t{octets[1]} << 16U |
           std::uint32_t{octets[2]} << 8U | std::uint32_t{octets[3]};
}

/// The quality word of a channel, where it is in seqData, and what was wrong with the value before.
struct WatchedQuality {
    std::size_t offset = 0;
    std::uint32_t channel = 0;
    /// 0 is good.
    std::uint32_t faults = 0;
};

/// Follows the contents of the ASDUs of one stream.
class ContentWatch {
public:
    ContentWatch(TrafficIndex const& index, TrafficStream const& stream, FindingSink sink)
        : stream_(stream),
          sink_(sink),
          layouts_(index, stream, std::nullopt),
          attributes_(index, stream),
          reader_(index, stream) {}

    void look(PacketRef packet) {
        ReadAsdu const asdu = reader_.read(packet);
        lookAtClock(asdu, packet);
        if (!asdu.data.empty()) {
            if (attributes_.isChangedAt(packet) || asdu.data.size() != dataSize_) {
                findQualities(asdu, packet);
            }
            for (WatchedQuality& quality : qualities_) {
                std::uint32_t const faults = wordAt(asdu.data.data() + quality.offset) & kFaults;
                if ((faults != 0) != (quality.faults != 0)) [[unlikely]] {
                    Finding made = finding(FindingKind::qualityChanged, packet);
                    made.expected = numberOf(quality.faults);
                    made.found = numberOf(faults);
                    made.member = {quality.channel};
                    sink_(made);
                }
                quality.faults = faults;
            }
        }
        last_ = packet;
    }

private:
    /// Where qualities are from here on.
    void findQualities(ReadAsdu const& asdu, PacketRef packet) {
        if (dataSize_ != 0 && dataSize_ != asdu.data.size()) {
            Finding made = finding(FindingKind::dataSetChanged, packet);
            made.expected = numberOf(static_cast<std::int64_t>(dataSize_));
            made.found = numberOf(static_cast<std::int64_t>(asdu.data.size()));
            sink_(made);
            qualities_.clear();
        }
        dataSize_ = asdu.data.size();
        std::vector<WatchedQuality> found;
        auto const& layout =
            layouts_.of({.size = dataSize_, .attributes = &attributes_.at(packet)}).layout;
        for (std::size_t channel = 0; layout && channel < layout->channels().size(); ++channel) {
            if (auto const offset = layout->channels()[channel].qualityOffset) {
                found.push_back({.offset = *offset,
                                 .channel = static_cast<std::uint32_t>(channel),
                                 .faults = 0});
            }
        }
        for (WatchedQuality& quality : found) {
            auto const known = std::find_if(
                qualities_.begin(), qualities_.end(),
                [&](WatchedQuality const& each) { return each.channel == quality.channel; });
            quality.faults = known == qualities_.end() ? 0 : known->faults;
        }
        qualities_ = std::move(found);
    }

    void lookAtClock(ReadAsdu const& asdu, PacketRef packet) {
        if (asdu.refrTm != kNoTime) {
            UtcTime const time{.quality = asdu.timeQuality};
            edge(isClockFailed_, time.clockFailure(), FindingKind::clockFailure, packet);
            edge(isClockFree_, time.clockNotSynchronized(), FindingKind::clockNotSynchronized,
                 packet);
        }
        if (asdu.gmIdentity.empty()) {
            return;
        }
        if (hasClock_ && !std::equal(clock_.begin(), clock_.end(), asdu.gmIdentity.begin())) {
            Finding made = finding(FindingKind::grandmasterChanged, packet);
            made.expected = OctetString(clock_.begin(), clock_.end());
            made.found = toOwned(asdu.gmIdentity);
            sink_(made);
        }
        std::copy_n(asdu.gmIdentity.begin(), clock_.size(), clock_.begin());
        hasClock_ = true;
    }

    void edge(bool& isOn, bool isNow, FindingKind kind, PacketRef packet) {
        if (isNow && !isOn) {
            sink_(finding(kind, packet));
        }
        isOn = isNow;
    }

    [[nodiscard]] Finding finding(FindingKind kind, PacketRef packet) const {
        std::int64_t const arrival = stream_.parts[packet.part].packets.times()[packet.packet];
        Finding made;
        made.kind = kind;
        made.protocol = StreamProtocol::sv;
        made.from = arrival;
        made.until = arrival;
        made.place = {.packet = packet, .time = arrival};
        if (last_) {
            made.before = {.packet = *last_};
        }
        return made;
    }

    TrafficStream const& stream_;
    FindingSink sink_;
    StreamLayouts layouts_;
    PartAttributes attributes_;
    AsduReader reader_;
    /// Of seqData; 0 before the first.
    std::size_t dataSize_ = 0;
    std::vector<WatchedQuality> qualities_;
    std::array<std::uint8_t, kGmIdentitySize> clock_{};
    bool hasClock_ = false;
    bool isClockFailed_ = false;
    bool isClockFree_ = false;
    std::optional<PacketRef> last_;
};

}  // namespace

void superviseSamples(TrafficIndex const& index, std::size_t stream, std::stop_token const& stop,
                      FindingSink sink) {
    TrafficStream const& of = index.streams()[stream];
    ContentWatch watch(index, of, sink);
    PacketCourse course(of);
    for (std::uint64_t seen = 0; auto const packet = course.next(); ++seen) {
        if ((seen & kPatience) == 0 && stop.stop_requested()) {
            return;
        }
        watch.look(*packet);
    }
}

}  // namespace TalIec61850Analysis::detail
