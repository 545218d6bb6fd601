#pragma once

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <TalIec61850Analysis/samples/FindLayouts.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <map>
#include <optional>
#include <vector>

#include "tools/render/SampleText.hpp"

namespace TalIec61850Tools {

/// Finds out what samples are made of, by the streams that they are of.
class IndexedLayouts {
public:
    /// @param index  must outlive this
    explicit IndexedLayouts(TalIec61850Analysis::TrafficIndex const& index) : index_(index) {}

    /// @param stream  that of one of the packet's ASDUs
    /// @return one for each ASDU
    /// @throws std::system_error  a capture cannot be read again
    [[nodiscard]] AsduLayouts of(TalIec61850Analysis::SvPacket const& packet,
                                 TalIec61850Analysis::StreamKey const& stream);

private:
    [[nodiscard]] std::optional<FoundLayout> layoutOf(
        TalIec61850Analysis::TrafficStream const& stream, std::size_t dataSize);

    using Layouts = std::vector<TalIec61850Analysis::StreamLayout>;

    TalIec61850Analysis::TrafficIndex const& index_;
    std::map<TalIec61850Analysis::TrafficStream const*, Layouts> known_;
};

/// Finds out what samples are made of, by ASDUs of the same streams in the frames that follow
/// and, where these are few, in those before: nothing far away is read.
/// @param record  of the packet
/// @return one for each ASDU
/// @throws std::system_error  the capture cannot be read
[[nodiscard]] AsduLayouts layoutsNear(TalIec61850Analysis::CaptureFile& capture,
                                      TalIec61850Analysis::CaptureRecord const& record,
                                      TalIec61850Analysis::SvPacket const& packet);

}  // namespace TalIec61850Tools
