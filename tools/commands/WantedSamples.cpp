#include "tools/commands/WantedSamples.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>

#include "tools/commands/IndexTraffic.hpp"
#include "tools/commands/NothingFoundNote.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/Complain.hpp"
#include "tools/output/OutputError.hpp"
#include "tools/output/Plural.hpp"
#include "tools/render/CaptureText.hpp"
#include "tools/render/UtcText.hpp"
#include "tools/selection/StreamRow.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::SampleBlock;
using TalIec61850Analysis::SampleCounts;
using TalIec61850Analysis::SampleOptions;
using TalIec61850Analysis::SampleReader;
using TalIec61850Analysis::SampleRows;
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
      criteria_(ofSv(choice.criteria)),
      index_(indexTraffic(run, criteria_, choice.common.jobs)) {
    reportFaults(run, index_);
    for (TrafficStream const& stream : index_.streams()) {
        if (!isWanted(stream)) {
            continue;
        }
        WantedStream wanted{.stream = &stream, .layouts = {}};
        try {
            wanted.layouts = findLayouts(index_, stream, choice.layout);
        } catch (std::system_error const& error) {
            lose(stream, error.code());
            continue;
        }
        streams_.push_back(std::move(wanted));
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
    auto const& wanted = choice_.channels;
    bool const isThere = wanted.empty() || std::any_of(wanted.begin(), wanted.end(),
                                                       [&](auto number) { return number <= most; });
    if (most > 0 && !isThere) {
        throw UsageError(fmt::format("--channels: these streams have {}", plural(most, "channel")));
    }
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
    SampleReader reader(index_, *stream.stream, options(rows));
    try {
        bool isMoreWanted = true;
        while (isMoreWanted) {
            SampleBlock const* const block = reader.next();
            if (block == nullptr) {
                break;
            }
            if (isWanted(*block)) {
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
    std::vector<StreamRow> const rows = collectRows(index_, criteria_);
    if (auto const span = timesOf(rows)) {
        run_.note(fmt::format("no sample in the window; these streams have packets from {} to {}",
                              toUtcText(span->first), toUtcText(span->last)));
    }
}

}  // namespace TalIec61850Tools
