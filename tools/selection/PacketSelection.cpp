#include "tools/selection/PacketSelection.hpp"

#include <algorithm>
#include <tuple>
#include <utility>

#include "tools/selection/CaptureTime.hpp"
#include "tools/selection/PlacedPackets.hpp"

namespace TalIec61850Tools {

using TalIec61850Parser::Db;
using TalIec61850Parser::Package;
using TalIec61850Parser::PackageFile;
using TalIec61850Parser::PackageFileSet;

namespace {

struct AdmittedStream {
    StreamIdentity identity;
    PackageFileSet const* files = nullptr;
};

std::vector<AdmittedStream> admittedStreams(Db const& db, StreamCriteria const& criteria) {
    std::vector<AdmittedStream> streams;
    auto const add = [&](auto const& stream) {
        StreamIdentity identity = identityOf(stream);
        if (criteria.admit(identity)) {
            streams.push_back({.identity = std::move(identity), .files = &stream.files});
        }
    };
    std::for_each(db.gooseProto.streams.begin(), db.gooseProto.streams.end(), add);
    std::for_each(db.svProto.streams.begin(), db.svProto.streams.end(), add);
    std::stable_sort(streams.begin(), streams.end(), [](auto const& a, auto const& b) {
        return comesBefore(a.identity, b.identity);
    });
    return streams;
}

bool isEarlier(Package const& a, Package const& b) {
    return std::pair(toCaptureTime(a.time), a.position) <
           std::pair(toCaptureTime(b.time), b.position);
}

/// Takes what the window holds of one stream in one file. Every packet is looked at: the library's
/// own search needs them in time order, which a capture does not promise.
class FileSearch {
public:
    FileSearch(PacketSelection& selection, PacketWish const& wish, std::uint32_t stream,
               std::uint32_t capture)
        : selection_(selection), wish_(wish), stream_(stream), capture_(capture) {}

    void search(PackageFile const& file) {
        for (Package const& package : file.packages) {
            if (isPlaced(package)) {
                take(package);
            } else {
                ++selection_.unplaced;
            }
        }
        bool const hasContext =
            wish_.withContext && selection_.streams[stream_].protocol == Protocol::goose;
        if (hasContext && before_ != nullptr) {
            add(*before_, Place::before);
        }
        if (hasContext && after_ != nullptr) {
            add(*after_, Place::after);
        }
    }

private:
    void take(Package const& package) {
        CaptureTime const time = toCaptureTime(package.time);
        if (wish_.window.from && time < *wish_.window.from) {
            before_ = before_ == nullptr || isEarlier(*before_, package) ? &package : before_;
        } else if (wish_.window.to && time > *wish_.window.to) {
            after_ = after_ == nullptr || isEarlier(package, *after_) ? &package : after_;
        } else {
            add(package, Place::inside);
        }
    }

    void add(Package const& package, Place place) {
        selection_.packets.push_back(
            {.package = &package, .stream = stream_, .capture = capture_, .place = place});
    }

    PacketSelection& selection_;
    PacketWish const& wish_;
    std::uint32_t stream_;
    std::uint32_t capture_;
    Package const* before_ = nullptr;
    Package const* after_ = nullptr;
};

bool packetComesBefore(SelectedPacket const& a, SelectedPacket const& b) {
    auto const key = [](SelectedPacket const& packet) {
        return std::tuple(toCaptureTime(packet.package->time), packet.capture,
                          packet.package->position);
    };
    return key(a) < key(b);
}

}  // namespace

PacketSelection selectPackets(Db const& db, CaptureNumbers const& captures,
                              PacketWish const& wish) {
    PacketSelection selection;
    for (auto& stream : admittedStreams(db, wish.criteria)) {
        auto const number = static_cast<std::uint32_t>(selection.streams.size());
        selection.streams.push_back(std::move(stream.identity));
        for (PackageFile const& file : *stream.files) {
            FileSearch(selection, wish, number, captures.at(file.fileName)).search(file);
        }
    }
    std::sort(selection.packets.begin(), selection.packets.end(), packetComesBefore);
    return selection;
}

}  // namespace TalIec61850Tools
