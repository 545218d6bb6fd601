#include "tools/commands/IndexTraffic.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/redundancy/AlignClocks.hpp>
#include <algorithm>
#include <cstdint>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/CaptureText.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::CaptureSummary;
using TalIec61850Analysis::ReadMode;
using TalIec61850Analysis::StreamKey;
using TalIec61850Analysis::TrafficIndex;
using TalIec61850Analysis::TrafficOptions;
using TalIec61850Analysis::TrafficStream;

namespace {

/// How captures are read: ahead, where that takes a processor that no other file would have, and is
/// worth a thread.
/// @param jobs  how many files are read at a time; 0 for as many as the machine has cores
ReadMode readModeFor(std::size_t files, std::uint64_t size, std::size_t jobs) {
    constexpr std::uint64_t kWorthAThread = std::uint64_t{16} << 20U;
    std::size_t const threads = jobs == 0 ? std::thread::hardware_concurrency() : jobs;
    bool const isOneFree = threads >= 2 * files;
    return isOneFree && size >= kWorthAThread * files ? ReadMode::ahead : ReadMode::plain;
}

TrafficIndex readCaptures(CommandRun const& run, TrafficOptions options) {
    std::uint64_t size = 0;
    for (CaptureSource const& capture : run.captures()) {
        size += capture.size;
    }
    options.read = readModeFor(run.captures().size(), size, options.jobs);
    ProgressBar bar = run.progressBar();
    bar.startFile(nameOfAll(run.captures()), size);
    if (bar.isShown()) {
        options.progress = [&](std::uint64_t done, std::uint64_t all) {
            bar.show(static_cast<double>(done) /
                     static_cast<double>(std::max<std::uint64_t>(all, 1)));
        };
    }
    return TalIec61850Analysis::indexCaptures(pathsOf(run), options);
}

/// How far a clock is from another one: "5.000020000 s ahead of". Exact, so that times can be
/// compared with those of the file.
std::string apartText(std::int64_t offset) {
    constexpr std::uint64_t kSecond = 1'000'000'000;
    bool const isAhead = offset > 0;
    auto const bits = static_cast<std::uint64_t>(offset);
    std::uint64_t const length = isAhead ? bits : 0 - bits;
    return fmt::format("{}.{:09} s {}", length / kSecond, length % kSecond,
                       isAhead ? "ahead of" : "behind");
}

}  // namespace

std::string nameOfAll(std::vector<CaptureSource> const& captures) {
    return captures.size() == 1 ? captures.front().name : plural(captures.size(), "file");
}

TrafficIndex indexTraffic(CommandRun const& run, PacketCriteria const& criteria, std::size_t jobs,
                          StreamPublishers* publishers) {
    TrafficOptions options{.keeps = {}, .stop = {}, .progress = {}, .jobs = jobs};
    if (publishers == nullptr) {
        if (criteria != PacketCriteria()) {
            options.keeps = [&](StreamKey const& key) { return criteria.admitKey(key); };
        }
        return readCaptures(run, std::move(options));
    }
    // Who publishes a stream is known only when all are seen.
    PacketCriteria ofAnyIed = criteria;
    ofAnyIed.ieds.clear();
    options.keeps = [&](StreamKey const& key) {
        publishers->see(key);
        return ofAnyIed.admitKey(key) && publishers->mayBeOf(criteria.ieds, key);
    };
    TrafficIndex index = readCaptures(run, options);
    auto const streams = index.streams();
    bool const isNoneTooMany =
        std::all_of(streams.begin(), streams.end(),
                    [&](TrafficStream const& stream) { return criteria.admitKey(stream.key); });
    if (isNoneTooMany) {
        return index;
    }
    // Seldom: one that may have been of these IEDs is of another control block, or of none.
    options.keeps = [&](StreamKey const& key) { return criteria.admitKey(key); };
    return readCaptures(run, std::move(options));
}

TrafficIndex indexByOneClock(CommandRun& run, PacketCriteria const& criteria, std::size_t jobs,
                             StreamPublishers* publishers) {
    TrafficIndex index = indexTraffic(run, criteria, jobs, publishers);
    std::optional<std::uint32_t> reference;
    try {
        reference = alignClocks(index);
    } catch (std::system_error const& error) {
        run.complainOf(nameOfAll(run.captures()), faultText(error.code()));
    }
    for (std::size_t file = 0; reference && file < index.files().size(); ++file) {
        if (std::int64_t const offset = index.files()[file].clockOffset; offset != 0) {
            run.note(fmt::format("{}: its clock is {} that of {}, by which times are told",
                                 escapeText(run.captures()[file].name), apartText(offset),
                                 escapeText(run.captures()[*reference].name)));
        }
    }
    return index;
}

TrafficIndex surveyTraffic(CommandRun const& run, std::size_t jobs) {
    return readCaptures(run, {.keeps = [](StreamKey const&) { return false; },
                              .stop = {},
                              .progress = {},
                              .jobs = jobs});
}

void reportFaults(CommandRun& run, TrafficIndex const& index) {
    for (std::size_t number = 0; number < index.files().size(); ++number) {
        CaptureSummary const& summary = index.files()[number].summary;
        std::string const& name = run.captures()[number].name;
        if (auto const note = linkTypeNote(summary)) {
            run.note(fmt::format("{}: {}", escapeText(name), *note));
        }
        if (summary.error) {
            run.complainOf(name, faultText(summary.error));
        }
        for (std::string const& text : damageTexts(summary)) {
            run.complainOf(name, text);
        }
    }
}

CaptureSpan spanOf(TrafficIndex const& index) {
    std::optional<CaptureTime> begin;
    std::optional<CaptureTime> end;
    for (auto const& file : index.files()) {
        if (auto const first = file.summary.first) {
            begin = std::min(begin.value_or(*first), *first);
        }
        end = std::max(end, file.summary.last);
    }
    CaptureTime const known = begin.value_or(CaptureTime());
    return {.begin = known, .end = end.value_or(known)};
}

std::vector<std::string> pathsOf(CommandRun const& run) {
    std::vector<std::string> paths;
    for (CaptureSource const& capture : run.captures()) {
        paths.push_back(capture.path);
    }
    return paths;
}

}  // namespace TalIec61850Tools
