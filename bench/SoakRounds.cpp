#include "bench/SoakRounds.hpp"

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <algorithm>
#include <atomic>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

#include "bench/SoakDecode.hpp"
#include "bench/Workloads.hpp"

namespace TalBench {

using TalIec61850Parser::Db;
using TalIec61850Parser::FilteredPackagesResult;
using TalIec61850Parser::Package;
using TalIec61850Parser::PcapParser;
using TalIec61850Parser::Timest;

namespace {

constexpr std::uint64_t seed = 61850;
constexpr std::size_t queriesPerRound = 40;
constexpr std::size_t samplesPerRound = 40;
constexpr std::size_t longestWindow = 3000;

/// Thrown out of a progress call.
struct BreakOff {};

void require(bool isRight, std::string const& path, std::string const& what) {
    if (!isRight) {
        throw std::runtime_error(path + ": " + what);
    }
}

template <typename Visit>
void forEachStream(Db const& db, Visit const& visit) {
    for (auto const& stream : db.gooseProto.streams) {
        visit(stream);
    }
    for (auto const& stream : db.svProto.streams) {
        visit(stream);
    }
}

std::vector<Package const*> const& packagesIn(FilteredPackagesResult const& result) {
    return result.packages;
}
std::vector<Package const*> const& packagesIn(std::vector<Package const*> const& result) {
    return result;
}

/// Whether the packets on either side of a window lie outside.
bool areOutside(FilteredPackagesResult const& result, Timest const& from, Timest const& to) {
    return (result.previousPackage == nullptr || result.previousPackage->time < from) &&
           (result.nextPackage == nullptr || to < result.nextPackage->time);
}
bool areOutside(std::vector<Package const*> const& /*result*/, Timest const& /*from*/,
                Timest const& /*to*/) {
    return true;
}

bool isIn(Package const& package, WrittenFrame const& frame) {
    return package.position >= frame.position &&
           package.position < frame.position + frame.octets.size();
}

}  // namespace

SoakRounds::SoakRounds() : generator_(seed) {
    constexpr std::uint64_t thousand = 1000;
    captures_.emplace_back(withFrames(workload("sv16"), 400 * thousand));
    captures_.emplace_back(withFrames(workload("goose64"), 200 * thousand));
    captures_.emplace_back(withFrames(workload("mix1000"), 200 * thousand));
    captures_.emplace_back(withFrames(workload("hostile-shapes"), 10 * thousand));
    for (SoakCapture const& capture : captures_) {
        order_.push_back(&capture);
    }
}

void SoakRounds::run(std::function<void()> const& atFullest) {
    std::ranges::shuffle(order_, generator_);
    breakOff(drawCapture());
    for (SoakCapture const* const capture : order_) {
        index(*capture);
    }
    for (std::size_t query = 0; query < queriesPerRound; ++query) {
        queryWindow();
        queryNearest();
    }
    for (std::size_t sample = 0; sample < samplesPerRound; ++sample) {
        decodeSample();
    }
    atFullest();
    std::ranges::shuffle(order_, generator_);
    for (SoakCapture const* const capture : order_) {
        clear(*capture);
    }
    require(db_.gooseProto.streams.empty() && db_.svProto.streams.empty(), "store",
            "streams are left behind");
    ++counts_.rounds;
}

void SoakRounds::breakOff(SoakCapture const& capture) {
    constexpr std::size_t recordsPerCall = 1000;
    std::size_t const lastCall = draw(capture.frames() / recordsPerCall);
    bool const byThrowing = draw(2) == 0;
    std::atomic<bool> stop = false;
    std::size_t call = 0;
    try {
        PcapParser::parseFile(capture.path(), db_, {}, stop, [&](double) {
            if (call++ == lastCall) {
                stop = true;
                if (byThrowing) {
                    throw BreakOff();
                }
            }
        });
    } catch (BreakOff const&) {
    }
    // The record before which it was asked to stop is still read, that before which it threw is
    // not.
    std::size_t const frames = lastCall * recordsPerCall + (byThrowing ? 0 : 1);
    require(packetsOf(capture) == frames, capture.path(), "broken off at another place");
    counts_.frames += frames;
    db_.clearByFileName(capture.path());
}

void SoakRounds::index(SoakCapture const& capture) {
    std::atomic<bool> const neverStop = false;
    PcapParser::parseFile(capture.path(), db_, {}, neverStop, {});
    require(packetsOf(capture) == capture.frames(), capture.path(), "packets are missing");
    counts_.frames += capture.frames();
}

void SoakRounds::queryWindow() {
    SoakCapture const& any = drawCapture();
    std::size_t const first = draw(any.frames());
    Timest const from = any.timeOf(first);
    Timest const to = any.timeOf(std::min(first + draw(longestWindow), any.frames() - 1));
    std::map<std::string, std::size_t> found;
    forEachStream(db_, [&](auto const& stream) {
        for (auto const& [file, result] : stream.getfilteredPackages(from, to)) {
            found[file->fileName] += packagesIn(result).size();
            require(areOutside(result, from, to), file->fileName, "a neighbour in its window");
        }
    });
    for (SoakCapture const& capture : captures_) {
        require(found[capture.path()] == capture.framesWithin(from, to), capture.path(),
                "a window holds other packets");
    }
    ++counts_.queries;
}

void SoakRounds::queryNearest() {
    SoakCapture const& any = drawCapture();
    Timest const time = any.timeOf(draw(any.frames()));
    std::map<std::string, std::optional<Timest>> found;
    forEachStream(db_, [&](auto const& stream) {
        for (auto const& [file, nearest] : stream.findFilesNearestPackageIterator(time)) {
            auto& latest = found[file->fileName];
            latest = std::max(latest, std::optional(nearest->time));
        }
    });
    for (SoakCapture const& capture : captures_) {
        require(found[capture.path()] == capture.lastBefore(time), capture.path(),
                "another packet is nearest");
    }
    ++counts_.queries;
}

void SoakRounds::decodeSample() {
    SoakCapture const& capture = drawCapture();
    WrittenFrame const& frame = capture.samples()[draw(capture.samples().size())];
    std::size_t matches = 0;
    auto const decodeThose = [&](auto const& streams, auto const& check) {
        for (auto const& stream : streams) {
            for (auto const& [file, result] : stream.getfilteredPackages(frame.time, frame.time)) {
                for (Package const* const package : packagesIn(result)) {
                    if (file->fileName == capture.path() && isIn(*package, frame)) {
                        check(capture.path(), *package, frame);
                        ++matches;
                    }
                }
            }
        }
    };
    decodeThose(db_.gooseProto.streams, checkDecodedGoose);
    decodeThose(db_.svProto.streams, checkDecodedSv);
    require(matches == 1, capture.path(), "a frame is not in the index once");
    ++counts_.decoded;
}

void SoakRounds::clear(SoakCapture const& capture) {
    db_.clearByFileName(capture.path());
    require(packetsOf(capture) == 0, capture.path(), "packets are left behind");
}

std::size_t SoakRounds::draw(std::size_t count) { return generator_() % count; }

SoakCapture const& SoakRounds::drawCapture() { return captures_[draw(captures_.size())]; }

std::size_t SoakRounds::packetsOf(SoakCapture const& capture) const {
    std::size_t packets = 0;
    forEachStream(db_, [&](auto const& stream) {
        auto const file = stream.files.find(capture.path());
        packets += file == stream.files.end() ? 0 : file->packages.size();
    });
    return packets;
}

}  // namespace TalBench
