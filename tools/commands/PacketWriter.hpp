#pragma once

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/ShownPacket.hpp"
#include "tools/output/RowWriter.hpp"

namespace TalIec61850Tools {

/// Writes packets in full: a tree of lines for people, or rows.
class PacketWriter {
public:
    /// @param run      must outlive the writer
    /// @param columns  names of the fields to write, as rows in a table too; empty for all
    /// @throws UsageError  there is no such field
    PacketWriter(CommandRun& run, Format format, std::vector<std::string> const& columns);

    /// @throws OutputError  see Output
    void write(ShownPacket const& packet);

    /// Writes what is held back. To be called once, after the last packet.
    void finish();

private:
    TextSink sink_;
    bool inColour_;
    bool isFirst_ = true;
    /// Not set for people.
    std::optional<RowWriter<ShownPacket>> rows_;
};

}  // namespace TalIec61850Tools
