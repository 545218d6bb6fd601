#include "tools/render/SampleNotes.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/SampleText.hpp"
#include "tools/render/ValueText.hpp"

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

/// More would bury what else is said.
constexpr std::uint64_t kMostNotes = 8;

std::string perSecondText(SampleRate const& rate) {
    if (!rate.isKnown()) {
        return "an unknown rate";
    }
    return rate.seconds == 1 ? fmt::format("{} samples a second", rate.samples)
                             : fmt::format("a sample each {} s", rate.seconds);
}

std::string_view sourceText(RateSource source) {
    switch (source) {
        case RateSource::given:
            return "as given";
        case RateSource::counter:
            return "where smpCnt begins again";
        case RateSource::declared:
            return "by smpRate";
        case RateSource::standard:
            return "the standard rate nearest to arrival";
        case RateSource::arrival:
            return "by arrival";
        default:
            return "nothing tells it";
    }
}

std::string confRevText(StreamAttributes const& attributes) {
    if (!attributes.confRev) {
        return "none";
    }
    auto const* const number = valueIn(attributes.confRev);
    return number != nullptr ? std::to_string(*number)
                             : toHex(std::get<OctetString>(*attributes.confRev));
}

std::string datSetText(StreamAttributes const& attributes) {
    return attributes.datSet ? escapeText(*attributes.datSet) : "none";
}

}  // namespace

std::string rateText(SampleRate const& rate, RateSource source) {
    return fmt::format("{}, {}", perSecondText(rate), sourceText(source));
}

SampleNotes::SampleNotes(TrafficStream const& stream,
                         std::function<std::string const&(std::uint32_t)> nameOf,
                         std::function<void(std::string const&)> say)
    : stream_(stream), nameOf_(std::move(nameOf)), say_(std::move(say)) {}

void SampleNotes::note(SampleBlock const& block, std::string const& text) {
    if (notes_++ >= kMostNotes) {
        return;
    }
    auto const row = static_cast<std::size_t>(
        std::find_if(block.states.begin(), block.states.end(),
                     [](SampleState state) { return state != SampleState::missing; }) -
        block.states.begin());
    SamplePlace const place = block.places[row < block.size() ? row : 0];
    say_(fmt::format("{}@{}: {}: {}", escapeText(nameOf_(place.file)), place.fileOffset,
                     escapeText(stream_.key.name), text));
}

void SampleNotes::look(SampleBlock const& block) {
    lookAtRun(block);
    lookAtAttributes(block);
    lookAtLayout(block);
    before_ = {.run = block.run,
               .layout = block.layout,
               .dataSize = block.dataSize,
               .attributes = block.attributes};
}

void SampleNotes::lookAtRun(SampleBlock const& block) {
    SampleRun const& run = block.run;
    bool const isNew = !before_ || before_->run.first != run.first;
    if (!isNew) {
        return;
    }
    if (before_) {
        switch (run.start) {
            case RunStart::restart:
                note(block, "smpCnt goes on elsewhere: a restart, or a second publisher");
                break;
            case RunStart::pause:
                note(block, "nothing for more than ten minutes before this");
                break;
            case RunStart::clockStep:
                note(block, "the clock of the capture jumped");
                break;
            case RunStart::rateChange:
                note(block, fmt::format("from here on {}", rateText(run.rate, run.rateSource)));
                break;
            case RunStart::uncounted:
                note(block, "smpCnt is absent from here on, or is there again");
                break;
            case RunStart::first:
                break;
        }
    }
    bool const wasTold =
        before_ && before_->run.isRateContradicted && before_->run.rate == run.rate;
    if (run.isRateContradicted && !wasTold) {
        note(block, fmt::format("smpRate and smpCnt contradict each other: taken as {}",
                                rateText(run.rate, run.rateSource)));
    }
}

void SampleNotes::lookAtAttributes(SampleBlock const& block) {
    if (!before_ || before_->attributes == nullptr || block.attributes == nullptr) {
        return;
    }
    if (before_->attributes->confRev != block.attributes->confRev) {
        note(block, fmt::format("confRev changes from {} to {}", confRevText(*before_->attributes),
                                confRevText(*block.attributes)));
    }
    if (before_->attributes->datSet != block.attributes->datSet) {
        note(block, fmt::format("datSet changes from {} to {}", datSetText(*before_->attributes),
                                datSetText(*block.attributes)));
    }
}

void SampleNotes::lookAtLayout(SampleBlock const& block) {
    bool const isNew = !before_ || before_->layout.layout != block.layout.layout ||
                       before_->dataSize != block.dataSize;
    if (!isNew) {
        return;
    }
    if (before_) {
        note(block, fmt::format("the samples change from {} to {}",
                                layoutText(before_->layout, before_->dataSize),
                                layoutText(block.layout, block.dataSize)));
    }
    if (block.layout.source == LayoutSource::undecided) {
        std::string const why =
            block.layout.isZero
                ? "all zeros"
                : fmt::format("only {} to look at", plural(block.layout.asdus, "ASDU"));
        note(block, fmt::format("the layout is undecided ({}): read as {}; see --layout", why,
                                layoutText(block.layout, block.dataSize)));
    } else if (block.layout.source == LayoutSource::none && block.dataSize != 0) {
        note(block, fmt::format("{} look like no known layout; see --layout",
                                plural(block.dataSize, "octet")));
    }
}

void SampleNotes::finish(SampleCounts const& counts) {
    if (notes_ > kMostNotes) {
        say_(
            fmt::format("{}: {} more of these", escapeText(stream_.key.name), notes_ - kMostNotes));
    }
    if (counts.lost != 0 || counts.late != 0 || counts.repeated != 0) {
        say_(fmt::format("{}: of {} samples {} lost, {} late, {} repeated",
                         escapeText(stream_.key.name), counts.received + counts.lost, counts.lost,
                         counts.late, counts.repeated));
    }
}

}  // namespace TalIec61850Tools
