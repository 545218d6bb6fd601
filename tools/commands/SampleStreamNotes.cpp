#include "tools/commands/SampleStreamNotes.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tools/output/Complain.hpp"
#include "tools/output/Plural.hpp"
#include "tools/output/TextEscape.hpp"
#include "tools/render/AddressText.hpp"
#include "tools/render/SampleText.hpp"

namespace TalIec61850Tools {

namespace {

/// How many channels have no scale that is known.
/// @param channels  how many there are
std::size_t withoutScale(std::vector<ChannelMeaning> const& meanings, std::size_t channels) {
    return channels - static_cast<std::size_t>(std::count_if(
                          meanings.begin(), meanings.end(),
                          [](ChannelMeaning const& meaning) { return meaning.scale.has_value(); }));
}

/// FILE@POSITION.
std::string placeOfFirst(WantedSamples const& samples,
                         TalIec61850Analysis::TrafficStream const& stream) {
    auto const& part = stream.parts.front();
    return fmt::format("{}@{}", escapeText(samples.fileName(part.file)),
                       part.packets.frameOffsets()[0] + part.packets.pduOffsets()[0]);
}

}  // namespace

void noteTwoPublishers(WantedSamples const& samples) {
    struct Publisher {
        std::string source;
        /// Of its first packet.
        std::string place;
    };
    std::map<std::string, std::vector<Publisher>> sources;
    for (WantedStream const& stream : samples.streams()) {
        auto const& key = stream.stream->key;
        auto& known = sources[key.name];
        std::string const source = key.source ? toText(*key.source) : "an unknown source";
        if (std::none_of(known.begin(), known.end(),
                         [&](Publisher const& each) { return each.source == source; })) {
            known.push_back({.source = source, .place = placeOfFirst(samples, *stream.stream)});
        }
    }
    for (auto const& [svID, known] : sources) {
        if (known.size() > 1) {
            complain(fmt::format(
                "{}: {}: sent by {} and {}: each is a stream of its own", known[1].place,
                escapeText(svID), known[0].source,
                known.size() == 2 ? known[1].source : plural(known.size() - 1, "other")));
        }
    }
}

void noteNoScale(WantedStream const& stream) {
    for (auto const& layout : stream.layouts) {
        if (!layout.found.layout || stream.meanings(*layout.found.layout).empty()) {
            complain(fmt::format("{}: units of {} are not known: raw counts; see --scale",
                                 escapeText(stream.stream->key.name),
                                 layoutText(layout.found, layout.dataSize)));
        } else if (auto const unknown = withoutScale(stream.meanings(*layout.found.layout),
                                                     layout.found.layout->channels().size());
                   unknown != 0) {
            complain(fmt::format("{}: {} of {} not described: raw counts; see --scale",
                                 escapeText(stream.stream->key.name),
                                 unknown == 1 ? "the scale is" : "the scales are",
                                 plural(unknown, "channel")));
        }
    }
}

}  // namespace TalIec61850Tools
