#pragma once

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <optional>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/ShownPacketLayout.hpp"
#include "tools/output/RowWriter.hpp"

namespace TalIec61850Tools {

/// Writes packets in full: a tree of lines for people, or rows.
class PacketWriter {
public:
    /// @param run  must outlive the writer
    PacketWriter(CommandRun& run, Format format);

    /// @throws OutputError  see Output
    void write(ShownPacket const& packet);

private:
    TextSink sink_;
    bool inColour_;
    bool isFirst_ = true;
    /// Not set for people.
    std::optional<RowWriter<ShownPacket>> rows_;
};

}  // namespace TalIec61850Tools
