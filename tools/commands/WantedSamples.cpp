#include "tools/commands/WantedSamples.hpp"

#include <algorithm>
#include <chrono>

#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/output/Complain.hpp"
#include "tools/output/OutputError.hpp"
#include "tools/output/Plural.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleCounts;
using TalIec61850Analysis::SampleOptions;
using TalIec61850Analysis::SampleReader;
using TalIec61850Analysis::SampleRows;
using TalIec61850Analysis::SampleSummary;
using TalIec61850Analysis::TrafficStream;

namespace {

PacketCriteria ofSv(PacketCriteria criteria) {
    criteria.protocol = Protocol::sv;
    return criteria;
}

}  // namespace

WantedSamples::WantedSamples(CommandRun& run, SampleChoice const& choice)
    : run_(run),
      choice_(choice),
      names_(run, choice.common),
      criteria_(names_.asking(ofSv(choice.criteria))),
      index_(indexTraffic(run, criteria_, choice.common.jobs, names_.publishers())) {
    reportFaults(run, index_);
    for (TrafficStream const& stream : index_.streams()) {
        if (!isWanted(stream)) {
            continue;
        }
        WantedStream wanted{.stream = &stream, .layouts = {}, .described = nullptr};
        try {
            describe(wanted);
            findLayoutsOf(wanted);
        } catch (std::system_error const& error) {
            lose(stream, error.code());
            continue;
        }
        streams_.push_back(std::move(wanted));
    }
}

/// A layout on the command line counts, where it is another one of that length.
void WantedSamples::describe(WantedStream& stream) {
    DescribedSamples const* const samples = names_.samplesOf(stream.stream->key);
    bool const isOverruled = samples != nullptr && choice_.layout &&
                             choice_.layout->size() == samples->layout.size() &&
                             *choice_.layout != samples->layout;
    stream.described = isOverruled ? nullptr : samples;
}

/// Samples that are not as described, or not described in full, are told, and taken for what they
/// look like, or for what the command line says.
void WantedSamples::findLayoutsOf(WantedStream& stream) {
    auto const has = [&stream](std::size_t size) {
        return std::any_of(stream.layouts.begin(), stream.layouts.end(),
                           [size](auto const& each) { return each.dataSize == size; });
    };
    stream.layouts = findLayouts(index_, *stream.stream, layoutOf(stream));
    if (names_.dataSetOf(stream.stream->key) == nullptr || stream.layouts.empty()) {
        return;
    }
    bool const isOther =
        stream.described != nullptr ? !has(stream.described->layout.size()) : !choice_.layout;
    if (isOther) {
        auto const& part = stream.stream->parts.front();
        stream.described = names_.samplesOf(
            stream.stream->key, stream.layouts.front(),
            {.file = fileName(part.file),
             .position = part.packets.frameOffsets()[0] + part.packets.pduOffsets()[0]});
        stream.layouts = findLayouts(index_, *stream.stream, layoutOf(stream));
    }
}

bool WantedSamples::isWanted(TrafficStream const& stream) const {
    for (auto const& part : stream.parts) {
        for (auto const& change : part.changes) {
            if (criteria_.admitAttributes(index_.attributes(part, change))) {
                return true;
            }
        }
    }
    return false;
}

bool WantedSamples::isWanted(SampleBlock const& block) const {
    return block.attributes == nullptr || criteria_.admitAttributes(*block.attributes);
}

std::size_t WantedSamples::mostChannels() const {
    std::size_t most = 0;
    for (WantedStream const& stream : streams_) {
        for (auto const& layout : stream.layouts) {
            auto const& known = layout.found.layout;
            most = std::max(most, known ? known->channels().size() : 1);
        }
    }
    choice_.checkChannels(most);
    return most;
}

SampleOptions WantedSamples::options(SampleRows rows, WindowOptions const& window) const {
    auto const resolved = window.resolve(spanOf(index_));
    SampleOptions options;
    options.from = resolved.from;
    if (resolved.to && *resolved.to != CaptureTime::max()) {
        options.end = *resolved.to + std::chrono::nanoseconds(1);  // the end itself is inside
    }
    options.layout = choice_.layout;
    options.rate = choice_.rate;
    options.rows = rows;
    return options;
}

SampleCounts WantedSamples::visit(WantedStream const& stream, SampleRows rows,
                                  BlockSink const& take) {
    SampleOptions reading = options(rows);
    reading.layout = layoutOf(stream);
    SampleReader reader(index_, *stream.stream, std::move(reading));
    try {
        bool isMoreWanted = true;
        while (isMoreWanted) {
            SampleBlock const* const block = reader.next();
            if (block == nullptr) {
                break;
            }
            if (isWanted(*block)) {
                if (stream.described != nullptr && block->dataSize != 0) {
                    static_cast<void>(names_.samplesOf(
                        stream.stream->key, {.dataSize = block->dataSize, .found = block->layout},
                        {.file = fileName(block->places[0].file),
                         .position = block->places[0].fileOffset}));
                }
                isMoreWanted = take(*block);
            }
        }
    } catch (OutputError const&) {
        throw;
    } catch (std::system_error const& error) {
        lose(*stream.stream, error.code());
    }
    return reader.counts();
}

std::optional<SampleSummary> WantedSamples::summarize(WantedStream const& stream) {
    try {
        return summarizeSamples(index_, *stream.stream, choice_.rate);
    } catch (std::system_error const& error) {
        lose(*stream.stream, error.code());
        return std::nullopt;
    }
}

void WantedSamples::lose(TrafficStream const& stream, std::error_code const& error) {
    isLost_ = true;
    run_.complainOf(fileName(stream.parts.front().file), faultText(error));
}

void WantedSamples::noteIfNone(std::uint64_t samples) const {
    if (samples != 0 || isLost_) {
        return;
    }
    if (index_.streams().empty()) {
        noteNoStreams(run_, index_, criteria_, choice_.common.jobs);
        return;
    }
    noteOtherTimes(run_, collectRows(index_, criteria_), "no sample in the window");
}

}  // namespace TalIec61850Tools
