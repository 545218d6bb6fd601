#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <TalIec61850Analysis/traffic/StreamAttributes.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficOptions.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace TalIec61850Analysis {

/// One capture file of an index.
struct IndexedFile {
    /// What the file holds.
    CaptureSummary summary;
    /// Each that packets of the file have, once, in the order in which they came.
    std::vector<StreamAttributes> attributes;
    /// How far ahead the clock of the file was, in nanoseconds: its times in the index are without
    /// that, see TrafficIndex::shiftClocks.
    std::int64_t clockOffset = 0;

    /// Member by member.
    friend bool operator==(IndexedFile const&, IndexedFile const&) = default;
};

/// From one packet of a stream on, an attribute has this value.
template <typename Value>
struct AttributeValue {
    /// The first packet that has it.
    PacketRef from;
    /// The value; points into the index.
    Value const* value = nullptr;
};

/// What was really on the wire, by streams: their packets, with times, places and counters, and
/// their attributes. Made by indexCapture and indexCaptures.
class TrafficIndex {
public:
    TrafficIndex() = default;
    /// @param files    in their order
    /// @param streams  in any order, parts numbered by the files; of one key there may be several
    TALIEC61850ANALYSIS_EXPORT TrafficIndex(std::vector<IndexedFile> files,
                                            std::vector<TrafficStream> streams);

    /// The files, in the order in which they were given.
    [[nodiscard]] std::span<IndexedFile const> files() const noexcept { return files_; }
    /// The streams, in the order of their keys.
    [[nodiscard]] std::span<TrafficStream const> streams() const noexcept { return streams_; }
    /// The stream of a key; null where there is none.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT TrafficStream const* find(
        StreamKey const& key) const noexcept;

    /// What a change of a stream's part leads to.
    [[nodiscard]] StreamAttributes const& attributes(StreamPart const& part,
                                                     AttributeChange const& change) const noexcept {
        return files_[part.file].attributes[change.attributes];
    }

    /// The values that one attribute has in the course of a stream, in the order of the files, and
    /// in each in the order of its packets: one entry where it is another than before. Where
    /// packets were cut, an attribute that they do not have is left out.
    /// @param stream  of this index
    /// @param member  such as `&StreamAttributes::confRev`
    template <typename Value>
    [[nodiscard]] std::vector<AttributeValue<Value>> history(
        TrafficStream const& stream, Value StreamAttributes::*member) const {
        std::vector<AttributeValue<Value>> values;
        Value const unset{};
        for (std::uint32_t part = 0; part < stream.parts.size(); ++part) {
            for (AttributeChange const& change : stream.parts[part].changes) {
                StreamAttributes const& all = attributes(stream.parts[part], change);
                Value const& value = all.*member;
                bool const mayBeCut = !std::is_same_v<Value, bool> && all.isCut && value == unset;
                if (!mayBeCut && (values.empty() || *values.back().value != value)) {
                    values.push_back({{part, change.firstPacket}, &value});
                }
            }
        }
        return values;
    }

    /// Samples a second that an SV stream is to have: by smpRate and smpMod of its last packet,
    /// else by the largest smpCnt, where smpCnt is seen to begin again.
    /// @return nothing where neither tells, and for GOOSE
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::optional<double> nominalRate(
        TrafficStream const& stream) const;

    /// Adds another index, its files after those of this one. Copies and duplicates are found anew,
    /// so that the result is that of indexing all files at once.
    /// @throws std::system_error  a file cannot be read where frames of two have to be compared;
    ///                            all was added, and what are copies and duplicates is not known
    ///                            until something is added again
    TALIEC61850ANALYSIS_EXPORT void merge(TrafficIndex other);

    /// Adds what TrafficFollower has read on: to the file of its path that was added last, so that
    /// the result is that of indexing the file as it is now. What was read from the start of a file
    /// is added as another file.
    /// @throws std::system_error  as `merge`
    TALIEC61850ANALYSIS_EXPORT void append(TrafficIndex added);

    /// Leaves out the packets and the unread frames at the start of a file, so that an index of a
    /// file that grows need not grow. Streams without other packets go too. The times of the
    /// file become those of the packets that stay, where any do; what is counted of it stays as it
    /// is, and so do copies of packets that went.
    /// @param file         its number
    /// @param frameOffset  of the first frame that stays, in octets
    /// @param keeps        asked how many of the last packets that the file has of a stream stay
    ///                     even so; none where it is empty
    TALIEC61850ANALYSIS_EXPORT void forgetBefore(
        std::uint32_t file, std::uint64_t frameOffset,
        std::function<std::size_t(StreamKey const&, PacketColumns const&)> const& keeps = {});

    /// Takes from all times of each file how far its clock is ahead, so that times of several files
    /// compare; alignClocks finds that out. Copies are found anew; duplicates, which had equal
    /// times before, stay. To be called when all files are there: what is appended to a file later
    /// has its own times.
    /// @param ahead  by file, in nanoseconds, less than 2^63; times stay between 1970 and 2262
    TALIEC61850ANALYSIS_EXPORT void shiftClocks(std::span<std::int64_t const> ahead);

    /// File by file and stream by stream.
    friend bool operator==(TrafficIndex const&, TrafficIndex const&) = default;

private:
    void join(std::vector<TrafficStream> streams);
    void settle();
    static void count(TrafficStream& stream);
    [[nodiscard]] std::pair<std::optional<CaptureTime>, std::optional<CaptureTime>> timesOf(
        std::uint32_t file) const;
    void appendPart(StreamKey const& key, StreamPart part,
                    std::vector<std::uint32_t> const& attributes);

    std::vector<IndexedFile> files_;
    std::vector<TrafficStream> streams_;
};

/// Indexes one capture.
/// @param path     a capture of any format; of a damaged one, what CaptureFile reads of it
/// @param options  what is kept, and how it is read
/// @throws std::system_error  the file cannot be opened or read
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT TrafficIndex
indexCapture(std::string const& path, TrafficOptions const& options = {});

/// Indexes captures, several at a time where options say so. What the operating system refuses of a
/// file is in its summary; the others are indexed. Frames that two files have at the same time are
/// found by comparing their octets.
/// @throws std::system_error  a file that could be indexed cannot be read again for that
[[nodiscard]] TALIEC61850ANALYSIS_EXPORT TrafficIndex
indexCaptures(std::span<std::string const> paths, TrafficOptions const& options = {});

}  // namespace TalIec61850Analysis
