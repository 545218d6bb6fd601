#include "bench/Workloads.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "bench/GoosePublisher.hpp"
#include "bench/OtherFrames.hpp"
#include "bench/SvPublisher.hpp"
#include "support/SampledValues.hpp"
#include "support/StationDevice.hpp"

namespace TalBench {

using TalTest::CaptureVariant;
using TalTest::Ethernet;

namespace {

constexpr std::uint64_t million = 1'000'000;
constexpr std::uint64_t sampleInterval = TalTest::stationGrid;
constexpr std::uint64_t drawInterval = 10 * TalTest::microsecond;
constexpr std::uint16_t firstSvAppId = 0x4000;
constexpr std::size_t numAppIds = 0x4000;

Ethernet link(std::string_view multicast, std::string_view source, std::size_t stream) {
    std::size_t const high = stream >> 8 & 0xFF;
    std::size_t const low = stream & 0xFF;
    return Ethernet()
        .to(fmt::format("{}:{:02x}:{:02x}", multicast, high, low))
        .from(fmt::format("{}:{:02x}:{:02x}", source, high, low))
        .withVlan(100);
}

SvSettings svSettings(std::size_t stream) {
    SvSettings settings;
    settings.ethernet = link("01:0c:cd:04", "02:00:00:04", stream);
    settings.appId = static_cast<std::uint16_t>(firstSvAppId + stream % numAppIds);
    settings.svID = fmt::format("BAY{:04}MU1", stream);
    return settings;
}

GooseSettings gooseSettings(std::size_t stream, std::uint64_t framesPerState) {
    GooseSettings settings;
    settings.ethernet = link("01:0c:cd:01", "02:00:00:01", stream);
    settings.appId = static_cast<std::uint16_t>(1 + stream % numAppIds);
    settings.device = fmt::format("BAY{:04}RELAY", stream);
    settings.framesPerState = framesPerState;
    settings.firstSqNum = stream * 37 % framesPerState;
    return settings;
}

void addSv(Publishers& publishers, std::size_t count, std::size_t numAsdus = 1) {
    for (std::size_t stream = 0; stream < count; ++stream) {
        SvSettings settings = svSettings(stream);
        settings.numAsdus = numAsdus;
        publishers.push_back(std::make_unique<SvPublisher>(settings));
    }
}

void addGoose(Publishers& publishers, std::size_t count, std::uint64_t framesPerState) {
    for (std::size_t stream = 0; stream < count; ++stream) {
        publishers.push_back(
            std::make_unique<GoosePublisher>(gooseSettings(stream, framesPerState)));
    }
}

std::unique_ptr<Traffic> svTraffic(std::size_t streams, std::size_t numAsdus = 1) {
    Publishers publishers;
    addSv(publishers, streams, numAsdus);
    return std::make_unique<TakingTurns>(std::move(publishers), numAsdus * sampleInterval);
}

std::unique_ptr<Traffic> gooseTraffic() {
    Publishers publishers;
    addGoose(publishers, 64, 1000);
    return std::make_unique<TakingTurns>(std::move(publishers), TalTest::millisecond);
}

constexpr std::size_t numMixedSvStreams = 800;

// Every stream has two kinds of frames.
Publishers mixedPublishers() {
    Publishers publishers;
    for (std::size_t stream = 0; stream < numMixedSvStreams; ++stream) {
        SvSettings settings = svSettings(stream);
        settings.isOverBothLans = true;
        publishers.push_back(std::make_unique<SvPublisher>(settings));
    }
    // Half of the frames have a sqNum of one octet, half one of two.
    addGoose(publishers, 200, 256);
    return publishers;
}

// Merging units send at every sample, one after the other; relays between, when they have to.
std::unique_ptr<Traffic> mixedTraffic() {
    return std::make_unique<TakingTurnsWithGuests>(mixedPublishers(), numMixedSvStreams, 4,
                                                   drawInterval);
}

std::unique_ptr<Traffic> drawnTraffic() {
    return std::make_unique<DrawingLots>(mixedPublishers(), drawInterval);
}

std::unique_ptr<Traffic> amongOtherTraffic() {
    Publishers publishers = otherFrames();
    addSv(publishers, 8);
    addGoose(publishers, 4, 1000);
    return std::make_unique<DrawingLots>(std::move(publishers), drawInterval);
}

bool passesFilter20(std::size_t stream) { return stream % 10 == 5; }
constexpr std::size_t numFilter20Streams = 200;

std::unique_ptr<Traffic> filter20Traffic() {
    Publishers publishers;
    for (std::size_t stream = 0; stream < numFilter20Streams; ++stream) {
        SvSettings settings = svSettings(stream);
        settings.isWanted = passesFilter20(stream);
        publishers.push_back(std::make_unique<SvPublisher>(settings));
    }
    return std::make_unique<TakingTurns>(std::move(publishers), sampleInterval);
}

TalIec61850Parser::Filter filter20() {
    TalIec61850Parser::Filter filter;
    for (std::size_t stream = 0; stream < numFilter20Streams; ++stream) {
        if (passesFilter20(stream)) {
            auto& entry = filter.svFilters.emplace_back();
            entry.appId.reset();
            entry.svID = svSettings(stream).svID;
        }
    }
    return filter;
}

// One sender of many names, which have five lengths.
std::unique_ptr<Traffic> hostileTraffic() {
    Publishers publishers;
    for (std::size_t stream = 0; stream < 100'000; ++stream) {
        std::string const svID = fmt::format("{:06}MU1{}", stream, std::string(stream % 5, 'x'));
        publishers.push_back(std::make_unique<RepeatedFrame>(
            true, TalTest::svFrame(link("01:0c:cd:04", "02:00:00:04", 0),
                                   TalTest::message92le(svID, 0))));
    }
    return std::make_unique<DrawingLots>(std::move(publishers), drawInterval);
}

std::vector<Workload> makeWorkloads() {
    auto const sv16 = [] { return svTraffic(16); };
    std::vector<Workload> all = {
        {.name = "sv16", .frames = 4 * million, .traffic = sv16},
        {.name = "goose64", .frames = 2 * million, .traffic = gooseTraffic},
        {.name = "sv8asdu", .frames = million, .traffic = [] { return svTraffic(16, 8); }},
        {.name = "mix1000", .frames = 2 * million, .traffic = mixedTraffic},
        {.name = "mix1000-drawn", .frames = 2 * million, .traffic = drawnTraffic},
        {.name = "other70", .frames = 2 * million, .traffic = amongOtherTraffic},
        {.name = "filter20",
         .frames = 2 * million,
         .traffic = filter20Traffic,
         .filter = filter20()},
        {.name = "big-endian",
         .frames = 2 * million,
         .traffic = sv16,
         .variant = CaptureVariant::microBig},
        {.name = "nanosecond",
         .frames = 2 * million,
         .traffic = sv16,
         .variant = CaptureVariant::nanoLittle},
        {.name = "hostile-shapes", .frames = million, .traffic = hostileTraffic},
    };
    for (std::size_t const streams : {1U, 10U, 100U, 1000U, 10'000U}) {
        all.push_back({.name = fmt::format("streams-{}", streams),
                       .frames = 2 * million,
                       .traffic = [streams] { return svTraffic(streams); }});
    }
    return all;
}

void writeThrough(std::string const& path) {
    int const file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file >= 0) {
        ::fdatasync(file);
        ::close(file);
    }
}

}  // namespace

std::vector<Workload> const& workloads() {
    static std::vector<Workload> const all = makeWorkloads();
    return all;
}

std::optional<Workload> findWorkload(std::string_view name) {
    auto const found = std::ranges::find(workloads(), name, &Workload::name);
    return found == workloads().end() ? std::nullopt : std::optional(*found);
}

Workload workload(std::string_view name) { return findWorkload(name).value(); }

Workload withFrames(Workload workload, std::uint64_t frames) {
    workload.frames = frames;
    return workload;
}

std::uint64_t writeCapture(Workload const& workload, std::string const& path,
                           FrameVisitor const& visit) {
    std::ofstream out(path, std::ios::binary);
    std::uint64_t wanted = 0;
    {
        auto const traffic = workload.traffic();
        TalTest::CaptureWriter writer(out, workload.variant);
        for (std::uint64_t frame = 0; frame < workload.frames; ++frame) {
            Sent const sent = traffic->next();
            if (visit) {
                visit(sent, writer.nextRecordPosition());
            }
            auto const seconds = static_cast<std::uint32_t>(sent.time / TalTest::second);
            writer.add(TalTest::stationStart + seconds,
                       static_cast<std::uint32_t>(sent.time % TalTest::second), sent.frame);
            wanted += sent.isWanted ? 1 : 0;
        }
    }
    out.close();
    if (!out) {
        throw std::runtime_error("cannot write " + path);
    }
    writeThrough(path);
    return wanted;
}

}  // namespace TalBench
