#include <TalIec61850Scl/match/CheckStation.hpp>
#include <TalIec61850Scl/match/CompareAttributes.hpp>
#include <TalIec61850Scl/match/CompareFrames.hpp>
#include <TalIec61850Scl/match/CompareIntervals.hpp>
#include <TalIec61850Scl/match/CompareRate.hpp>
#include <TalIec61850Scl/match/DescribedStream.hpp>
#include <TalIec61850Scl/match/DifferenceSet.hpp>
#include <TalIec61850Scl/match/RunTasks.hpp>
#include <utility>

namespace TalIec61850Scl {

namespace {

using detail::ComparedPart;
using detail::DescribedStream;
using detail::DifferenceSet;
using TalIec61850Analysis::PacketRef;
using TalIec61850Analysis::TrafficIndex;

/// A stream that is compared.
struct Compared {
    DescribedStream described;
    std::size_t number = 0;
    StreamMatch match;
    DifferenceSet differences = {};
};

class StationChecker {
public:
    StationChecker(TrafficIndex const& index, StationDescription const& station,
                   StationCheckOptions const& options)
        : index_(index),
          station_(station),
          matches_(matchStreams(index, station)),
          isWanted_(matches_.size(), !options.streams) {
        for (std::size_t const stream : options.streams.value_or(std::vector<std::size_t>())) {
            if (stream < isWanted_.size()) {
                isWanted_[stream] = true;
            }
        }
        for (std::size_t stream = 0; stream < matches_.size(); ++stream) {
            if (matches_[stream] && isWanted_[stream]) {
                ControlBlock const& block = station.controlBlocks[matches_[stream]->controlBlock];
                compared_.push_back({.described = {.index = index,
                                                   .stream = index.streams()[stream],
                                                   .block = block,
                                                   .dataSet = dataSetOf(block)},
                                     .number = stream,
                                     .match = *matches_[stream]});
            }
        }
    }

    std::vector<StationRow> run(std::size_t jobs) {
        compare(jobs);
        return rows();
    }

private:
    [[nodiscard]] DataSet const* dataSetOf(ControlBlock const& block) const {
        bool const isThere = block.dataSet && *block.dataSet < station_.dataSets.size();
        return isThere ? &station_.dataSets[*block.dataSet] : nullptr;
    }

    /// Each capture is a task, and what the index has of each stream is one.
    void compare(std::size_t jobs) {
        std::vector<std::vector<ComparedPart>> partsOfFile(index_.files().size());
        for (Compared const& compared : compared_) {
            auto const& parts = compared.described.stream.parts;
            for (std::uint32_t part = 0; part < parts.size(); ++part) {
                if (needsFrames(compared.described)) {
                    partsOfFile[parts[part].file].push_back(
                        {.described = &compared.described, .part = part});
                }
            }
        }
        std::size_t const files = partsOfFile.size();
        detail::runTasks(files + compared_.size(), jobs, [&](std::size_t task) {
            if (task < files) {
                compareFrames(static_cast<std::uint32_t>(task), partsOfFile[task]);
            } else {
                compareColumns(compared_[task - files]);
            }
        });
        addFromFiles(partsOfFile);
    }

    static void compareColumns(Compared& compared) {
        compareKey(compared.described, compared.differences);
        compareAttributes(compared.described, compared.differences);
        compareIntervals(compared.described, compared.differences);
        compareRate(compared.described, compared.differences);
    }

    /// Parts are in the order of the files, so that the first of a kind is that of the stream.
    void addFromFiles(std::vector<std::vector<ComparedPart>> const& partsOfFile) {
        std::vector<std::size_t> next(partsOfFile.size(), 0);
        for (Compared& compared : compared_) {
            if (!needsFrames(compared.described)) {
                continue;
            }
            for (auto const& part : compared.described.stream.parts) {
                ComparedPart const& found = partsOfFile[part.file][next[part.file]++];
                compared.differences.add(found.differences.differences());
            }
        }
    }

    [[nodiscard]] std::vector<StationRow> rows() {
        std::vector<std::vector<StationRow>> ofBlock(station_.controlBlocks.size());
        for (Compared& compared : compared_) {
            ofBlock[compared.match.controlBlock].push_back(rowOf(compared));
        }
        std::vector<bool> hasStream(ofBlock.size(), false);
        for (auto const& match : matches_) {
            if (match) {
                hasStream[match->controlBlock] = true;
            }
        }
        std::vector<StationRow> rows;
        for (std::size_t block = 0; block < ofBlock.size(); ++block) {
            std::move(ofBlock[block].begin(), ofBlock[block].end(), std::back_inserter(rows));
            if (!hasStream[block] && canBeSeen(station_.controlBlocks[block])) {
                StationRow row;
                row.result = StationResult::missing;
                row.controlBlock = block;
                rows.push_back(std::move(row));
            }
        }
        for (std::size_t stream = 0; stream < matches_.size(); ++stream) {
            if (!matches_[stream] && isWanted_[stream]) {
                StationRow row;
                row.result = StationResult::unexpected;
                row.stream = stream;
                row.packets = index_.streams()[stream].packets;
                row.packet = PacketRef();
                rows.push_back(std::move(row));
            }
        }
        return rows;
    }

    [[nodiscard]] static StationRow rowOf(Compared& compared) {
        StationRow row;
        row.controlBlock = compared.match.controlBlock;
        row.stream = compared.number;
        row.by = compared.match.by;
        row.differences = compared.differences.takeSorted();
        row.packets = compared.described.stream.packets;
        row.packet = PacketRef();
        if (!row.differences.empty()) {
            row.result = StationResult::differs;
            row.packet = row.differences.front().packet;
        }
        return row;
    }

    /// What is sent to one subscriber over a connection has no address of its own, and is not to be
    /// expected in a capture.
    [[nodiscard]] static bool canBeSeen(ControlBlock const& block) {
        return block.multicast || block.address.mac;
    }

    TrafficIndex const& index_;
    StationDescription const& station_;
    std::vector<std::optional<StreamMatch>> matches_;
    /// By stream of the index.
    std::vector<bool> isWanted_;
    /// In the order of the index.
    std::vector<Compared> compared_;
};

}  // namespace

std::vector<StationRow> checkStation(TrafficIndex const& index, StationDescription const& station,
                                     StationCheckOptions const& options) {
    return StationChecker(index, station, options).run(options.jobs);
}

}  // namespace TalIec61850Scl
