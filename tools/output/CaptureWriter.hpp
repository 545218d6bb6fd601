#pragma once

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <cstdint>
#include <optional>

#include "tools/output/TextSink.hpp"

namespace TalIec61850Tools {

/// Writes frames as a classic capture with nanoseconds, in the byte order of the machine.
class CaptureWriter {
public:
    explicit CaptureWriter(TextSink sink) : sink_(std::move(sink)) {}

    /// Writes a record. The first one says which link type the capture has.
    /// @return false for a frame of another link type, which a classic capture cannot have
    [[nodiscard]] bool write(TalIec61850Analysis::RecordView const& view);

    /// Writes the header of a capture without records, where there was none. To be called last.
    void finish();

    /// Of the frames; set after the first.
    [[nodiscard]] std::optional<std::uint16_t> linkType() const { return linkType_; }

    /// How many records have no time: they are written with that of 1970.
    [[nodiscard]] std::uint64_t withoutTime() const { return withoutTime_; }

private:
    void begin(std::uint16_t linkType);

    TextSink sink_;
    std::optional<std::uint16_t> linkType_;
    std::uint64_t withoutTime_ = 0;
};

}  // namespace TalIec61850Tools
