#pragma once

// Internal: what is counted of all records of a capture.

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace TalIec61850Analysis::detail {

/// What is known of frames by their link type.
struct LinkKind {
    std::uint64_t* count = nullptr;
    std::size_t headerSize = 0;
    std::size_t etherTypeOffset = 0;
    std::uint16_t type = 0;
    bool isReadable = false;
};

/// Counts records, their octets and times, and the frames that are neither GOOSE nor SV.
class RecordCounter {
public:
    /// @param summary  is counted in; must outlive the counter
    explicit RecordCounter(CaptureSummary& summary) : summary_(summary) {}

    /// @return that of the record; valid until the next call
    LinkKind const& countRecord(CaptureRecord const& record) {
        ++summary_.records;
        summary_.capturedOctets += record.capturedSize;
        summary_.originalOctets += record.originalSize;
        summary_.snappedFrames += record.originalSize > record.capturedSize ? 1 : 0;
        if (record.time) {
            std::int64_t const time = nanosecondsOf(*record.time);
            first_ = std::min(first_, time);
            last_ = std::max(last_, time);
        }
        if (record.dropped) {
            summary_.dropped = summary_.dropped.value_or(0) + *record.dropped;
        }
        if (link_.count == nullptr || link_.type != record.linkType) [[unlikely]] {
            changeLink(record.linkType);
        }
        ++*link_.count;
        return link_;
    }

    /// Counts a frame that is neither GOOSE nor SV.
    /// @param etherType  that after the tags; below 0600, IEEE 802.3 has a length there
    /// @param payload    what follows the EtherType
    void countOther(std::uint16_t etherType, Octets payload);

    /// Sets the times; to be called last.
    void finish();

private:
    void changeLink(std::uint16_t linkType);
    /// The count of messages of this kind; null for none that is known.
    [[nodiscard]] std::uint64_t* countOfSession(Octets session) const;

    CaptureSummary& summary_;
    std::int64_t first_ = std::numeric_limits<std::int64_t>::max();
    std::int64_t last_ = std::numeric_limits<std::int64_t>::min();
    /// Of the record that was counted last.
    LinkKind link_;
    /// Of the other frame that was counted last.
    std::uint64_t* otherCount_ = nullptr;
    std::uint16_t otherType_ = 0;
};

}  // namespace TalIec61850Analysis::detail
