#pragma once

#include <TalIec61850Analysis/pictures/Envelope.hpp>
#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <TalIec61850Analysis/pictures/SampleSpans.hpp>
#include <TalIec61850Analysis/pictures/Waveform.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/render/PictureChannels.hpp"
#include "tools/render/PictureLanes.hpp"

namespace TalIec61850Tools {

// What a picture shows. All texts are results of `escapeText`.

/// An SV stream.
struct PlottedSamples {
    std::string name;
    /// In the order of the channels of what follows.
    std::vector<PictureChannel> channels;
    /// The samples, where they are few.
    TalIec61850Analysis::Waveform waveform;
    /// The least and the largest of them; the finest level is drawn.
    TalIec61850Analysis::Envelopes envelopes;
    TalIec61850Analysis::SampleSpans spans;
    /// Which of the channels share a panel, by their places: see channelPanels.
    std::vector<std::vector<std::size_t>> panels;
};

/// A member of a GOOSE data set.
struct PlottedLane {
    std::string name;
    TalIec61850Analysis::MemberLane lane;
    /// When its quality was not good.
    std::vector<LaneTime> bad;
};

/// A GOOSE stream.
struct PlottedStates {
    std::string name;
    std::vector<PlottedLane> lanes;
};

/// A finding.
struct PlottedFinding {
    /// In nanoseconds since 1970.
    std::int64_t time = 0;
    TalIec61850Analysis::Severity severity = TalIec61850Analysis::Severity::note;
};

/// All of a picture.
struct PlotContent {
    std::string title;
    /// The captures.
    std::string source;
    /// What is shown, in nanoseconds since 1970.
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::vector<PlottedSamples> samples;
    std::vector<PlottedStates> states;
    std::vector<PlottedFinding> findings;
    /// Said in the place of samples, of states and of findings, where there are none; nothing is
    /// said where it is empty.
    std::string noSamples;
    std::string noStates;
    std::string noFindings;
    /// What is not in the picture; empty where all is.
    std::string leftOut;
    /// How far samples are from what is drawn at the time of its capture; empty where that is not
    /// much.
    std::string delayNote;
};

}  // namespace TalIec61850Tools
