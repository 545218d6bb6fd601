#include "tools/report/StatesSection.hpp"

#include <fmt/format.h>

#include <utility>

#include "tools/output/Plural.hpp"
#include "tools/output/WithCommas.hpp"
#include "tools/report/HtmlText.hpp"
#include "tools/report/Section.hpp"

namespace TalIec61850Tools {

void StatesSection::add(std::size_t stream) {
    if (json_.size() >= kMostDrawnStreams || octets_ >= mostOctets_) {
        return;  // captures are not read for what cannot be drawn
    }
    LanePicture picture = drawLanes(index_, stream, wish_, names_);
    leftOut_ += picture.leftOut;
    areJoined_ = areJoined_ || picture.areJoined;
    if (picture.json.is_null()) {
        return;
    }
    std::size_t const octets = scriptSize(picture.json);
    if (octets < mostOctets_ - octets_) {
        octets_ += octets;
        json_.push_back(std::move(picture.json));
    }
}

std::vector<std::string> StatesSection::absent(std::size_t streams) const {
    std::vector<std::string> sentences;
    if (json_.empty()) {
        sentences.emplace_back(streams == 0 ? "There is no GOOSE stream to draw."
                                            : "No GOOSE stream has members to draw in this time.");
    } else if (streams > json_.size()) {
        sentences.push_back(fmt::format("{} of {} GOOSE streams are drawn.",
                                        withCommas(json_.size()), withCommas(streams)));
    }
    if (leftOut_ > 0) {
        sentences.push_back(
            fmt::format("{} of GOOSE data sets have no lane: those that change come first.",
                        plural(leftOut_, "member")));
    }
    if (areJoined_) {
        sentences.emplace_back("Where states change too often for the page, lanes say so.");
    }
    return sentences;
}

}  // namespace TalIec61850Tools
