#include <TalIec61850Analysis/samples/AsduReader.hpp>
#include <TalIec61850Analysis/samples/PacketCourse.hpp>
#include <TalIec61850Analysis/samples/PartAttributes.hpp>
#include <TalIec61850Analysis/samples/StreamLayouts.hpp>
#include <TalIec61850Analysis/supervision/FindingValues.hpp>
#include <TalIec61850Analysis/supervision/SampleContents.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <TalIec61850Analysis/traffic/CaptureWindow.hpp>
#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace TalIec61850Analysis::detail {

namespace {

/// The bits of a quality word that say anything against a value: all but `derived`.
constexpr std::uint32_t kFaults = ~0x2000U;

/// @param octets  four of them, the most significant first
std::uint32_t qualityWordAt(std::uint8_t const* octets) {
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

/// The qualities that a layout has, all of them good.
std::vector<WatchedQuality> qualitiesOf(SampleLayout const& layout) {
    std::vector<WatchedQuality> qualities;
    for (std::size_t channel = 0; channel < layout.channels().size(); ++channel) {
        if (auto const offset = layout.channels()[channel].qualityOffset) {
            qualities.push_back(
                {.offset = *offset, .channel = static_cast<std::uint32_t>(channel), .faults = 0});
        }
    }
    return qualities;
}

/// In what layouts are inferred to be, qualities are the second of each two words.
std::vector<WatchedQuality> possibleQualities(std::size_t size) {
    constexpr std::size_t kPair = 8;
    constexpr std::size_t kWord = 4;
    std::vector<WatchedQuality> qualities;
    for (std::size_t offset = kWord; size % kPair == 0 && offset < size; offset += kPair) {
        qualities.push_back(
            {.offset = offset, .channel = static_cast<std::uint32_t>(offset / kPair), .faults = 0});
    }
    return qualities;
}

/// Follows the contents of the ASDUs of one stream.
class ContentWatch {
public:
    /// @param described  what the samples are; null where that is not described
    ContentWatch(TrafficIndex const& index, std::size_t stream, SampleLayout const* described,
                 std::shared_ptr<CaptureWindow> const& window, StreamFindingSink const& sink)
        : index_(index),
          number_(stream),
          stream_(index.streams()[stream]),
          described_(described),
          sink_(sink),
          course_(stream_),
          attributes_(index, stream_),
          window_(window),
          reader_(index, stream_, window),
          ahead_(course_.nextStrip(kMostAlike)) {}

    /// Whether any packet is left.
    [[nodiscard]] bool isLeft() const { return ahead_.count != 0; }
    /// Of the next packet.
    [[nodiscard]] std::uint32_t file() const { return stream_.parts[ahead_.first.part].file; }
    [[nodiscard]] std::uint64_t fileOffset() const {
        return stream_.parts[ahead_.first.part].packets.frameOffsets()[ahead_.first.packet];
    }

    /// Looks at the next packets, while they are in a file before an offset; at some after that,
    /// where they are read already.
    void lookUpTo(std::uint32_t file, std::uint64_t end) {
        while (isLeft() && this->file() == file && fileOffset() < end) {
            look(ahead_.first);
            pass(1);
            pass(countAlike());
        }
    }

private:
    static constexpr std::size_t kMostAlike = 64;

    /// Goes on to the packet after some of those that follow each other; these have the same
    /// attributes.
    void pass(std::size_t count) {
        if (count == 0) {
            return;
        }
        auto const passed = static_cast<std::uint32_t>(count);
        last_ = {.part = ahead_.first.part, .packet = ahead_.first.packet + passed - 1};
        hasLast_ = true;
        ahead_.first.packet += passed;
        ahead_.count -= passed;
        isStripBegun_ = ahead_.count != 0;
        if (!isStripBegun_) {
            ahead_ = course_.nextStrip(kMostAlike);
        }
    }

    /// @return how many packets follow the one that was looked at last in which nothing that is
    ///         watched differs
    [[nodiscard]] std::size_t countAlike() {
        if (!isStripBegun_ || dataSize_ == 0 || reader_.tellsClock()) {
            return 0;
        }
        std::size_t const read =
            reader_.readAlike(ahead_.first, dataSize_, std::span(alike_).first(ahead_.count),
                              [](std::size_t /*number*/, std::uint64_t /*fileOffset*/) {});
        std::size_t same = 0;
        while (same < read && !isAnyChanged(alike_[same])) {
            ++same;
        }
        return same;
    }

    void look(PacketRef const& packet) {
        ReadAsdu const asdu = reader_.read(packet);
        lookAtClock(asdu, packet);
        if (!asdu.data.empty()) {
            if (attributes_.isChangedAt(packet) || asdu.data.size() != dataSize_) {
                beginData(asdu, packet);
            }
            if (isAnyChanged(asdu.data.data())) [[unlikely]] {
                lookAtQualities(asdu.data, packet);
            }
        }
    }

    /// From here on, seqData may be made otherwise. Where that is not described, which words are
    /// qualities matters only once one that may be is none that is good.
    void beginData(ReadAsdu const& asdu, PacketRef packet) {
        std::size_t const size = asdu.data.size();
        if (dataSize_ != 0 && dataSize_ != size) {
            Finding made = finding(FindingKind::dataSetChanged, packet);
            made.expected = numberOf(static_cast<std::int64_t>(dataSize_));
            made.found = numberOf(static_cast<std::int64_t>(size));
            sink_(number_, made);
            qualities_.clear();
        }
        dataSize_ = size;
        attributesNow_ = &attributes_.at(packet);
        isLayoutKnown_ = described_ != nullptr && described_->size() == size;
        watch(isLayoutKnown_ ? qualitiesOf(*described_) : possibleQualities(size));
    }

    /// Watches these, with what is known of them.
    void watch(std::vector<WatchedQuality> qualities) {
        for (WatchedQuality& quality : qualities) {
            auto const known = std::find_if(
                qualities_.begin(), qualities_.end(),
                [&](WatchedQuality const& each) { return each.channel == quality.channel; });
            quality.faults = known == qualities_.end() ? 0 : known->faults;
        }
        qualities_ = std::move(qualities);
    }

    [[nodiscard]] bool isAnyChanged(std::uint8_t const* data) const {
        std::uint32_t changed = 0;
        for (WatchedQuality const& quality : qualities_) {
            changed |= (qualityWordAt(data + quality.offset) & kFaults) ^ quality.faults;
        }
        return changed != 0;
    }

    void lookAtQualities(Octets data, PacketRef packet) {
        OctetString kept;
        if (!isLayoutKnown_) {
            // Other ASDUs are read in between.
            kept = toOwned(data);
            data = kept;
            if (!layouts_) {
                layouts_.emplace(index_, stream_, std::nullopt, window_);
            }
            auto const& layout =
                layouts_->of({.size = dataSize_, .attributes = attributesNow_}, packet).layout;
            watch(layout ? qualitiesOf(*layout) : std::vector<WatchedQuality>());
            isLayoutKnown_ = true;
        }
        for (WatchedQuality& quality : qualities_) {
            std::uint32_t const faults = qualityWordAt(data.data() + quality.offset) & kFaults;
            if ((faults != 0) != (quality.faults != 0)) {
                Finding made = finding(FindingKind::qualityChanged, packet);
                if (hasLast_) {
                    made.expected = numberOf(quality.faults);
                }
                made.found = numberOf(faults);
                made.member = {quality.channel};
                sink_(number_, made);
            }
            quality.faults = faults;
        }
    }

    void lookAtClock(ReadAsdu const& asdu, PacketRef packet) {
        if (asdu.hasTimeQuality) {
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
            sink_(number_, made);
        }
        std::copy_n(asdu.gmIdentity.begin(), clock_.size(), clock_.begin());
        hasClock_ = true;
    }

    void edge(bool& isOn, bool isNow, FindingKind kind, PacketRef packet) {
        if (isNow && !isOn) {
            sink_(number_, finding(kind, packet));
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
        if (hasLast_) {
            made.before = {.packet = last_};
        }
        return made;
    }

    TrafficIndex const& index_;
    std::size_t number_;
    TrafficStream const& stream_;
    SampleLayout const* described_;
    StreamFindingSink const& sink_;
    PacketCourse course_;
    PartAttributes attributes_;
    std::shared_ptr<CaptureWindow> window_;
    AsduReader reader_;
    /// Not looked at yet; without any, there are none left.
    PacketCourse::Strip ahead_;
    /// Whether the one that was looked at last is of the same strip.
    bool isStripBegun_ = false;
    /// Where the data of those are that are looked at at once.
    std::array<std::uint8_t const*, kMostAlike> alike_{};
    /// Inferred only where it matters.
    std::optional<StreamLayouts> layouts_;
    /// Of seqData; 0 before the first.
    std::size_t dataSize_ = 0;
    StreamAttributes const* attributesNow_ = nullptr;
    std::vector<WatchedQuality> qualities_;
    /// Whether these are what the layout says, not just what they may be.
    bool isLayoutKnown_ = false;
    std::array<std::uint8_t, kGmIdentitySize> clock_{};
    bool hasClock_ = false;
    bool isClockFailed_ = false;
    bool isClockFree_ = false;
    PacketRef last_;
    bool hasLast_ = false;
};

}  // namespace

void superviseSamples(TrafficIndex const& index, std::vector<std::size_t> const& streams,
                      std::vector<std::optional<SampleLayout>> const& layouts,
                      std::stop_token const& stop, StreamFindingSink const& sink) {
    // What one reading of a capture brings.
    constexpr std::uint64_t kStretch = std::uint64_t{192} << 10U;
    // The streams take turns, a block each: mostly in the same part of a capture.
    auto const window = std::make_shared<CaptureWindow>(index, 1, CaptureWindow::kWindow);
    std::vector<std::unique_ptr<ContentWatch>> watches;
    watches.reserve(streams.size());
    for (std::size_t const stream : streams) {
        bool const isDescribed = stream < layouts.size() && layouts[stream];
        watches.push_back(std::make_unique<ContentWatch>(
            index, stream, isDescribed ? &*layouts[stream] : nullptr, window, sink));
    }
    while (!stop.stop_requested()) {
        std::erase_if(watches, [](auto const& watch) { return !watch->isLeft(); });
        if (watches.empty()) {
            return;
        }
        std::uint32_t const file = watches.front()->file();
        std::uint64_t const end = watches.front()->fileOffset() + kStretch;
        for (auto const& watch : watches) {
            watch->lookUpTo(file, end);
        }
    }
}

}  // namespace TalIec61850Analysis::detail
