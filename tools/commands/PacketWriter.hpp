#pragma once

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <optional>

#include "tools/commands/CommandRun.hpp"
#include "tools/output/RowWriter.hpp"
#include "tools/selection/PacketLayout.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::GoosePacket;
using TalIec61850Analysis::SvPacket;

/// A packet in full, and the record that it came in.
struct ShownPacket {
    PacketRow row;
    TalIec61850Analysis::CaptureRecord record;
    /// That of the packet's protocol is set.
    std::optional<GoosePacket> goose;
    std::optional<SvPacket> sv;
};

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
