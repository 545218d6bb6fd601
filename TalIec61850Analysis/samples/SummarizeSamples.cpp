#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/samples/SummarizeSamples.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Analysis {

namespace {

/// Looks at the blocks of a stream, one after the other.
class SummaryBuilder {
public:
    explicit SummaryBuilder(SampleSummary& summary) : summary_(summary) {}

    void add(SampleBlock const& block) {
        if (!run_ || run_->first != block.run.first) {
            closeRun();
            run_ = block.run;
            attributes_ = block.attributes;
        }
        samplesOfRun_ += block.size();
        for (SampleTimeSource const source : block.timeSources) {
            ++summary_.timeSources[static_cast<std::size_t>(source)];
        }
        // smpSynch mostly stays: only where it changes it is looked for among those that were met.
        std::uint16_t last = block.smpSynchs.front();
        addSynch(last);
        for (std::uint16_t const synch : block.smpSynchs) {
            if (synch != last) {
                last = synch;
                addSynch(synch);
            }
        }
    }

    void closeRun() {
        if (run_ && samplesOfRun_ > most_) {
            most_ = samplesOfRun_;
            summary_.run = run_;
            summary_.attributes = attributes_;
        }
        samplesOfRun_ = 0;
    }

private:
    void addSynch(std::uint16_t synch) {
        auto& met = summary_.smpSynchs;
        auto const place = std::lower_bound(met.begin(), met.end(), synch);
        if (place == met.end() || *place != synch) {
            met.insert(place, synch);
        }
    }

    SampleSummary& summary_;
    std::optional<SampleRun> run_;
    StreamAttributes const* attributes_ = nullptr;
    std::uint64_t samplesOfRun_ = 0;
    std::uint64_t most_ = 0;
};

}  // namespace

SampleSummary summarizeSamples(TrafficIndex const& index, TrafficStream const& stream,
                               SampleRate given) {
    SampleSummary summary;
    summary.copies = stream.copies;
    SampleOptions options;
    options.rate = given;
    options.withValues = false;
    SampleReader reader(index, stream, std::move(options));
    SummaryBuilder builder(summary);
    while (SampleBlock const* const block = reader.next()) {
        builder.add(*block);
    }
    builder.closeRun();
    summary.counts = reader.counts();
    summary.residuals = arrivalResiduals(index, stream, given);
    return summary;
}

}  // namespace TalIec61850Analysis
