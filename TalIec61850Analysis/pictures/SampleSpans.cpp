#include <TalIec61850Analysis/pictures/JoinShortSpans.hpp>
#include <TalIec61850Analysis/pictures/JoinedQuality.hpp>
#include <TalIec61850Analysis/pictures/RowTime.hpp>
#include <TalIec61850Analysis/pictures/SampleSpans.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <algorithm>
#include <cmath>
#include <limits>

namespace TalIec61850Analysis {

namespace {

constexpr std::size_t kFewestSpans = 16;

void joinSpans(SampleSpan& into, SampleSpan const& next) {
    into.from = std::min(into.from, next.from);
    into.to = std::max(into.to, next.to);
    into.samples += next.samples;
    into.quality = detail::joinedQuality(into.quality, next.quality);
    into.joined += next.joined;
}

/// When the sample after a row is due.
std::int64_t endOfRow(SampleBlock const& block, std::size_t row) {
    constexpr double kLongest = 1e18;
    double const interval = std::min(block.run.rate.interval(), kLongest);
    return detail::shiftedTime(std::max<std::int64_t>(detail::rowTime(block, row), 0),
                               std::max<std::int64_t>(std::llround(interval), 1));
}

/// Rows of a block in one span. Those at its ends that have no time are left out.
SampleSpan spanOf(SampleBlock const& block, std::size_t first, std::size_t end,
                  std::uint32_t quality) {
    while (first < end && detail::rowTime(block, first) == kNoTime) {
        ++first;
    }
    while (first < end && detail::rowTime(block, end - 1) == kNoTime) {
        --end;
    }
    if (first == end) {
        return {};
    }
    return {.from = detail::rowTime(block, first),
            .to = endOfRow(block, end - 1),
            .samples = end - first,
            .quality = quality};
}

}  // namespace

SampleSpanBuilder::SampleSpanBuilder(SpanOptions options)
    : options_(std::move(options)), choice_(options_.channels) {
    options_.mostSpans = std::max(options_.mostSpans, kFewestSpans);
}

/// Adds a span, or what goes on of the last one.
void SampleSpanBuilder::addSpan(Course& course, SampleSpan const& span) const {
    bool const goesOn =
        course.isOpen && !course.spans.empty() && course.spans.back().quality == span.quality;
    course.isOpen = span.samples != 0;
    if (span.samples == 0) {
        return;
    }
    if (goesOn) {
        SampleSpan& last = course.spans.back();
        last.from = std::min(last.from, span.from);
        last.to = std::max(last.to, span.to);
        last.samples += span.samples;
        return;
    }
    course.spans.push_back(span);
    detail::joinShortSpans(course.spans, options_.mostSpans, course.grain, joinSpans);
}

void SampleSpanBuilder::addMissing(SampleBlock const& block) {
    auto const begin = block.states.begin();
    auto const end = block.states.end();
    for (auto at = begin; at != end;) {
        auto const first = std::find(at, end, SampleState::missing);
        if (first != at) {
            missing_.isOpen = false;
        }
        at = std::find_if(first, end,
                          [](SampleState state) { return state != SampleState::missing; });
        if (first != at) {
            addSpan(missing_, spanOf(block, static_cast<std::size_t>(first - begin),
                                     static_cast<std::size_t>(at - begin), 0));
        }
    }
}

void SampleSpanBuilder::addQualities(SampleBlock const& block, Course& course,
                                     std::vector<std::uint32_t> const& words) const {
    std::uint32_t const bits = options_.qualityBits;
    std::uint32_t any = 0;
    for (std::uint32_t const word : words) {
        any |= word;
    }
    if ((any & bits) == 0) {
        // As in most blocks; it is seen faster than where spans begin.
        course.isOpen = false;
        return;
    }
    // A missing row has the word 0.
    for (std::size_t row = 0; row < words.size();) {
        std::uint32_t const word = words[row] & bits;
        std::size_t end = row + 1;
        while (end < words.size() && (words[end] & bits) == word) {
            ++end;
        }
        if (word == 0) {
            course.isOpen = false;
        } else {
            addSpan(course, spanOf(block, row, end, word));
        }
        row = end;
    }
}

void SampleSpanBuilder::add(SampleBlock const& block) {
    choice_.addChannelsOf(block);
    qualities_.resize(choice_.numbers().size());
    bool const isOtherRun = run_ != block.run;
    run_ = block.run;
    missing_.isOpen = missing_.isOpen && !isOtherRun;
    addMissing(block);
    for (std::size_t chosen = 0; chosen < qualities_.size(); ++chosen) {
        Course& course = qualities_[chosen];
        ChannelColumn const* const column = choice_.in(block, chosen);
        course.isOpen = course.isOpen && !isOtherRun && column != nullptr;
        if (column != nullptr) {
            addQualities(block, course, column->qualities);
        }
    }
}

SampleSpans SampleSpanBuilder::take() {
    SampleSpans made{.missing = std::move(missing_.spans),
                     .qualities = {},
                     .channelNumbers = choice_.numbers(),
                     .channelsOfStream = choice_.channelsOfStream()};
    qualities_.resize(choice_.numbers().size());
    for (Course& course : qualities_) {
        made.qualities.push_back(std::move(course.spans));
    }
    return made;
}

}  // namespace TalIec61850Analysis
