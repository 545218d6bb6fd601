#include "tools/report/WaveformsSection.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "tools/output/Plural.hpp"
#include "tools/output/WithCommas.hpp"
#include "tools/render/DurationText.hpp"
#include "tools/render/SampleDelay.hpp"
#include "tools/report/HtmlText.hpp"
#include "tools/report/Section.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::kNoTime;
using TalIec61850Analysis::TrafficStream;

namespace {

constexpr std::size_t kFewestColumns = 16;

/// What a stream takes of a page.
std::size_t sizeOf(PageStream const& picture) {
    return picture.octets.size() / 3 * 4 + scriptSize(picture.json);
}

/// Names, but not all of many.
std::string listed(std::vector<std::string> const& names) {
    constexpr std::size_t kMostNames = 4;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kMostNames); ++i) {
        text += (i == 0 ? "" : ", ") + names[i];
    }
    return names.size() > kMostNames
               ? text + fmt::format(" and {} more", withCommas(names.size() - kMostNames))
               : text;
}

/// Streams that are drawn as columns, with how many, and why.
struct CoarseStreams {
    std::vector<std::string> overSize;
    std::vector<std::string> overMemory;
};

std::string heldText(CoarseStreams const& coarse, std::uint64_t maxSize) {
    constexpr std::string_view kKept = ", so that these are kept as least and largest values: ";
    std::string text;
    if (!coarse.overSize.empty()) {
        text = fmt::format("too many for a page of at most {} octets{}{}", withCommas(maxSize),
                           kKept, listed(coarse.overSize));
    }
    if (!coarse.overMemory.empty()) {
        text += fmt::format("{}too many samples to hold{}{}", text.empty() ? "" : "; ", kKept,
                            listed(coarse.overMemory));
    }
    return text.empty() ? "all of them are in this page" : text;
}

}  // namespace

void WaveformsSection::add(std::size_t stream) {
    PageStream picture;
    if (drawn_.size() < kMostDrawnStreams) {
        TrafficStream const& known = index_.streams()[stream];
        picture = drawSamples(index_, known, wishOf_(known), names_);
    }
    mostChannels_ = std::max(mostChannels_, picture.channelsOfStream);
    if (picture.json.is_null()) {
        ++empty_;
        return;
    }
    std::size_t const size = sizeOf(picture);
    drawn_.push_back({.picture = std::move(picture), .stream = stream, .size = size});
    fit();
}

/// Makes the largest streams coarser until all fit; where they do not, the last ones go.
void WaveformsSection::fit() {
    while (true) {
        std::size_t sum = 0;
        Drawn* largest = nullptr;
        for (Drawn& each : drawn_) {
            sum += each.size;
            bool const canShrink = each.picture.hasSamples || each.picture.columns > kFewestColumns;
            if (canShrink && (largest == nullptr || each.size > largest->size)) {
                largest = &each;
            }
        }
        if (sum <= room_) {
            return;
        }
        if (largest == nullptr) {
            drawn_.pop_back();
            ++empty_;
            continue;
        }
        if (largest->picture.hasSamples) {
            TrafficStream const& stream = index_.streams()[largest->stream];
            largest->picture = drawColumns(index_, stream, wishOf_(stream), names_);
        } else {
            halveColumns(largest->picture);
            largest->picture.isOverMemory = false;  // now it is the size of the page
        }
        largest->size = sizeOf(largest->picture);
    }
}

std::vector<std::string> WaveformsSection::absent(std::size_t streams) const {
    if (drawn_.empty()) {
        return {streams == 0 ? "There is no stream of Sampled Values to draw."
                             : "No samples can be drawn in this time: there are none, or what they "
                               "are made of is not known (--layout)."};
    }
    if (empty_ == 0) {
        return {};
    }
    return {
        fmt::format("{} of Sampled Values are not drawn: no sample in this time, or more "
                    "streams than fit.",
                    plural(empty_, "stream"))};
}

std::string WaveformsSection::delayNote() const {
    DelayNote note;
    for (Drawn const& each : drawn_) {
        note.add(each.picture.delay, names_.of(index_.streams()[each.stream]));
    }
    return note.text();
}

Waveforms WaveformsSection::take(std::uint64_t maxSize) {
    Waveforms all;
    std::uint64_t samples = 0;
    std::uint64_t missing = 0;
    std::size_t channels = 0;
    CoarseStreams coarse;
    for (Drawn& each : drawn_) {
        PageStream& picture = each.picture;
        samples += picture.received;
        missing += picture.missing;
        channels += picture.channels;
        if (picture.first != kNoTime) {
            all.first = all.first == kNoTime ? picture.first : std::min(all.first, picture.first);
            all.last = all.last == kNoTime ? picture.last : std::max(all.last, picture.last);
        }
        if (!picture.hasSamples) {
            (picture.isOverMemory ? coarse.overMemory : coarse.overSize)
                .push_back(
                    fmt::format("{} as {} columns of {}", names_.of(index_.streams()[each.stream]),
                                withCommas(picture.columns), durationText(picture.columnWidth)));
        }
        picture.json["at"] = all.octets.size();
        all.octets += picture.octets;
        picture.octets.clear();
        all.json.push_back(std::move(picture.json));
    }
    all.line = fmt::format(
        "Waveforms: {}.",
        drawn_.empty()
            ? "none"
            : fmt::format("{} of {}, {}, {} missing; {}", plural(channels, "channel"),
                          plural(drawn_.size(), "stream"), withCommas(samples) + " samples",
                          withCommas(missing), heldText(coarse, maxSize)));
    return all;
}

}  // namespace TalIec61850Tools
