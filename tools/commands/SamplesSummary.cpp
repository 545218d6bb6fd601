#include "tools/commands/SamplesSummary.hpp"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "tools/commands/WantedSamples.hpp"
#include "tools/help/FieldList.hpp"
#include "tools/options/ChosenColumns.hpp"
#include "tools/options/UsageError.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/WrapText.hpp"
#include "tools/render/SampleSummaryLayout.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::SampleSummary;

std::string samplesSummaryNotes() {
    auto const fields = listFields(fieldNames(sampleSummaryLayout(Format::json)),
                                   {{"layoutSource", "given, described, inferred or undecided"},
                                    {"layoutTests", "those that all of layoutAsdus ASDUs met"},
                                    {"rateSource", "given, counter, declared, standard or arrival"},
                                    {"countedRate", "by the largest smpCnt before it begins again"},
                                    {"residualMinNs", "arrival less time of the sample"},
                                    {"residualP50Ns", "above the least, as the next three"}});
    return paragraph(
        "--summary has a row for each stream, over the whole captures: what its samples are made "
        "of and its rate, each with what tells it; what tells the times of its samples; what "
        "arrival differs from these by; how many came, were lost, late or repeated. The least "
        "residual is delay and what the clocks are apart, which nothing tells apart, and driftPpm "
        "how much faster the clock of the capture runs. Its fields: " +
        fields + ".");
}

ExitStatus writeSamplesSummary(SampleChoice const& choice) {
    if (!choice.window.isEmpty() || !choice.channels.empty() || !choice.scales.empty()) {
        throw UsageError(
            "--summary is about all samples of a stream: it takes no window, no --channels and no "
            "--scale");
    }
    auto const layout =
        chooseColumns(sampleSummaryLayout(choice.common.format), choice.common.columns);
    CommandRun run(choice.common);
    WantedSamples samples(run, choice);
    auto writer = run.rowWriter(layout);
    std::size_t streams = 0;
    std::uint64_t received = 0;
    for (WantedStream const& stream : samples.streams()) {
        std::optional<SampleSummary> summary = samples.summarize(stream);
        if (!summary) {
            continue;
        }
        ++streams;
        received += summary->counts.received;
        auto const* const found = stream.layouts.empty() ? nullptr : &stream.layouts.front();
        writer.write({.key = &stream.stream->key,
                      .layout = found,
                      .layouts = stream.layouts.size(),
                      .isDescribed = found != nullptr && stream.isDescribed(found->found),
                      .summary = *std::move(summary)});
    }
    writer.finish();
    samples.noteIfNone(received);
    run.writeSummary(fmt::format("{} of {} in {}", plural(received, "sample"),
                                 plural(streams, "stream"), plural(run.captures().size(), "file")));
    return run.finish();
}

}  // namespace TalIec61850Tools
