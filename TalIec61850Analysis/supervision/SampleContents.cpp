#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/supervision/FindingValues.hpp>
#include <TalIec61850Analysis/supervision/SampleContents.hpp>
#include <algorithm>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

namespace {

/// The bits of a quality word that say anything against a value: all but `derived`.
constexpr std::uint32_t kFaults = ~0x2000U;

/// Finds packets by their places in files.
class PacketFinder {
public:
    explicit PacketFinder(TrafficStream const& stream) : stream_(stream) {}

    [[nodiscard]] std::optional<FindingPlace> find(SamplePlace const& place) const {
        for (std::uint32_t part = 0; part < stream_.parts.size(); ++part) {
            if (stream_.parts[part].file != place.file) {
                continue;
            }
            PacketColumns const& packets = stream_.parts[part].packets;
            auto const offsets = packets.frameOffsets();
            auto const after = std::upper_bound(offsets.begin(), offsets.end(), place.fileOffset);
            auto packet = static_cast<std::size_t>(after - offsets.begin());
            while (packet > 0 && packets.asdus()[packet - 1] != place.asdu) {
                --packet;
            }
            if (packet > 0) {
                return FindingPlace{
                    .packet = {.part = part, .packet = static_cast<std::uint32_t>(packet - 1)},
                    .time = packets.times()[packet - 1]};
            }
        }
        return std::nullopt;
    }

private:
    TrafficStream const& stream_;
};

/// Follows the contents of samples.
class ContentWatch {
public:
    ContentWatch(TrafficStream const& stream, FindingSink sink) : packets_(stream), sink_(sink) {}

    void look(SampleBlock const& block) {
        if (dataSize_ && *dataSize_ != block.dataSize) {
            report(FindingKind::dataSetChanged, block, 0, static_cast<std::int64_t>(*dataSize_),
                   static_cast<std::int64_t>(block.dataSize));
            faults_.clear();
        }
        dataSize_ = block.dataSize;
        faults_.resize(std::max(faults_.size(), block.channels.size()));
        for (std::size_t channel = 0; channel < block.channels.size(); ++channel) {
            lookAt(block, channel);
        }
        last_ = block.places.back();
        hasLast_ = true;
    }

private:
    void lookAt(SampleBlock const& block, std::size_t channel) {
        auto const& qualities = block.channels[channel].qualities;
        for (std::size_t row = 0; row < qualities.size(); ++row) {
            std::uint32_t const faults = qualities[row] & kFaults;
            if ((faults != 0) != (faults_[channel] != 0) &&
                block.states[row] != SampleState::missing) [[unlikely]] {
                report(FindingKind::qualityChanged, block, row, std::int64_t{faults_[channel]},
                       std::int64_t{faults}, static_cast<std::uint32_t>(channel));
                faults_[channel] = faults;
            }
        }
    }

    void report(FindingKind kind, SampleBlock const& block, std::size_t row, std::int64_t expected,
                std::int64_t found, std::optional<std::uint32_t> channel = std::nullopt) {
        Finding made;
        made.kind = kind;
        made.protocol = StreamProtocol::sv;
        made.from = block.arrivals[row];
        made.until = made.from;
        made.expected = numberOf(expected);
        made.found = numberOf(found);
        made.place = packets_.find(block.places[row]);
        if (row > 0) {
            made.before = packets_.find(block.places[row - 1]);
        } else if (hasLast_) {
            made.before = packets_.find(last_);
        }
        if (channel) {
            made.member = {*channel};
        }
        sink_(made);
    }

    PacketFinder packets_;
    FindingSink sink_;
    std::optional<std::size_t> dataSize_;
    /// By channel, of the last sample; 0 is good.
    std::vector<std::uint32_t> faults_;
    SamplePlace last_;
    bool hasLast_ = false;
};

}  // namespace

void superviseSamples(TrafficIndex const& index, std::size_t stream, std::stop_token const& stop,
                      FindingSink sink) {
    SampleReader reader(index, index.streams()[stream]);
    ContentWatch watch(index.streams()[stream], sink);
    while (SampleBlock const* const block = reader.next()) {
        if (stop.stop_requested()) {
            return;
        }
        watch.look(*block);
    }
}

}  // namespace TalIec61850Analysis::detail
