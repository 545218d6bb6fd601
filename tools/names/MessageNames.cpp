#include "tools/names/MessageNames.hpp"

#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <string>
#include <utility>
#include <vector>

namespace TalIec61850Tools {

using namespace TalIec61850Analysis;

namespace {

std::vector<std::string> pathsIn(TrafficIndex const& index) {
    std::vector<std::string> paths;
    for (IndexedFile const& file : index.files()) {
        paths.push_back(file.summary.path);
    }
    return paths;
}

}  // namespace

MessageNames::MessageNames(TrafficIndex const& index, StreamNames& names,
                           std::function<std::string_view(std::uint32_t)> nameOf)
    : index_(index), names_(names), nameOf_(std::move(nameOf)) {}

MemberNames MessageNames::of(std::size_t stream, PacketRef packet) {
    TrafficStream const& of = index_.streams()[stream];
    if (names_.dataSetOf(of.key) == nullptr) {
        return {};
    }
    StreamPart const& part = of.parts[packet.part];
    std::uint64_t const frameOffset = part.packets.frameOffsets()[packet.packet];
    std::size_t const pduOffset = part.packets.pduOffsets()[packet.packet];
    if (!frames_) {
        frames_.emplace(pathsIn(index_));
    }
    RecordView const& view = frames_->read(part.file, frameOffset);
    GooseView const goose = viewGoose(view.frame, pduOffset, originOf(view.record));
    return goose.allData
               ? names_.namesOf(of.key, *goose.allData,
                                {.file = nameOf_(part.file), .position = frameOffset + pduOffset})
               : MemberNames();
}

}  // namespace TalIec61850Tools
