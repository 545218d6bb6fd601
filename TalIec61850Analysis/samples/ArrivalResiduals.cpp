#include <TalIec61850Analysis/samples/ArrivalResiduals.hpp>
#include <TalIec61850Analysis/samples/Histogram.hpp>
#include <TalIec61850Analysis/samples/LineFit.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace TalIec61850Analysis {

namespace {

/// The newest sample of a frame, as far as the frame is known.
struct Newest {
    std::uint32_t file = 0;
    std::uint16_t asdu = 0;
    std::int64_t arrival = kNoTime;
    std::int64_t time = kNoTime;

    /// Whether a sample of a block is a later one of the same frame; other streams may have ASDUs
    /// between.
    [[nodiscard]] bool isFollowedBy(SampleBlock const& block, std::size_t row) const {
        SamplePlace const& place = block.places[row];
        return place.asdu > asdu && place.file == file && block.arrivals[row] == arrival;
    }
    /// From 1970 to 2115: differences of these, and of such differences, are within 64 bits.
    [[nodiscard]] bool isUsual() const {
        constexpr std::int64_t kLatest = 4'600'000'000'000'000'000;
        auto const isOne = [](std::int64_t instant) { return instant >= 0 && instant < kLatest; };
        return isOne(time) && isOne(arrival);
    }
};

/// Calls with the time of each sample that is the newest of its frame, and its residual.
template <typename Visit>
void visitResiduals(TrafficIndex const& index, TrafficStream const& stream, SampleRate given,
                    Visit const& visit) {
    SampleOptions options;
    options.rate = given;
    options.withValues = false;
    SampleReader reader(index, stream, std::move(options));
    Newest newest;  // without times there is none
    auto const visitNewest = [&] {
        if (newest.isUsual()) {
            visit(newest.time, newest.arrival - newest.time);
        }
    };
    while (SampleBlock const* const block = reader.next()) {
        for (std::size_t row = 0; row < block->size(); ++row) {
            if (!newest.isFollowedBy(*block, row)) {
                visitNewest();
            }
            newest = {.file = block->places[row].file,
                      .asdu = block->places[row].asdu,
                      .arrival = block->arrivals[row],
                      .time = block->sampleTimes[row]};
        }
    }
    visitNewest();
}

/// The least residual in each of some equal parts of a span, and the slope of these.
class Envelope {
public:
    Envelope(std::int64_t first, std::int64_t last)
        : first_(first), width_(std::max<std::int64_t>((last - first) / kParts + 1, 1)) {
        least_.fill(kNone);
    }

    void add(std::int64_t time, std::int64_t residual) {
        auto const part = std::clamp<std::int64_t>((time - first_) / width_, 0, kParts - 1);
        std::int64_t& least = least_[static_cast<std::size_t>(part)];
        least = std::min(least, residual);
    }

    [[nodiscard]] std::optional<double> slope() const {
        detail::LineFit line;
        std::int64_t const origin = *std::min_element(least_.begin(), least_.end());
        for (std::size_t i = 0; i < least_.size(); ++i) {
            if (least_[i] != kNone) {
                line.add(static_cast<std::int64_t>(i) * width_, least_[i] - origin);
            }
        }
        return line.slope();
    }

private:
    static constexpr std::int64_t kParts = 64;
    static constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();

    std::int64_t first_;
    std::int64_t width_;
    std::array<std::int64_t, kParts> least_{};
};

}  // namespace

std::optional<ArrivalResiduals> arrivalResiduals(TrafficIndex const& index,
                                                 TrafficStream const& stream, SampleRate given) {
    constexpr std::int64_t kSecond = 1'000'000'000;
    constexpr double kPartsPerMillion = 1e6;
    ArrivalResiduals residuals;
    residuals.least = std::numeric_limits<std::int64_t>::max();
    std::int64_t first = std::numeric_limits<std::int64_t>::max();
    std::int64_t last = std::numeric_limits<std::int64_t>::min();
    visitResiduals(index, stream, given, [&](std::int64_t time, std::int64_t residual) {
        ++residuals.samples;
        residuals.least = std::min(residuals.least, residual);
        first = std::min(first, time);
        last = std::max(last, time);
    });
    if (residuals.samples == 0) {
        return std::nullopt;
    }
    detail::Histogram histogram;
    Envelope envelope(first, last);
    visitResiduals(index, stream, given, [&](std::int64_t time, std::int64_t residual) {
        std::int64_t const above = residual - residuals.least;
        histogram.add(static_cast<std::uint64_t>(above));
        envelope.add(time, residual);
    });
    residuals.median = histogram.percentile(50);
    residuals.percentile90 = histogram.percentile(90);
    residuals.percentile99 = histogram.percentile(99);
    residuals.largest = static_cast<std::int64_t>(histogram.largest());
    if (last - first >= kSecond) {
        if (auto const slope = envelope.slope()) {
            residuals.driftPpm = *slope * kPartsPerMillion;
        }
    }
    return residuals;
}

}  // namespace TalIec61850Analysis
