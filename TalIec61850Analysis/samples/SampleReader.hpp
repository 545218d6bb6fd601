#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/samples/SampleRate.hpp>
#include <TalIec61850Analysis/samples/SampleRun.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace TalIec61850Analysis {

/// Whether rows are given for samples that never came.
enum class SampleRows : std::uint8_t {
    received,     ///< they are absent
    everySample,  ///< they are rows, marked as missing, between those that came
};

/// Which samples are read, and as what.
struct SampleOptions {
    /// The first instant in the window; not set for a window without a start. Windows go by the
    /// time of the sample, by arrival where it has none; without either, it is in no window but
    /// that without start and end.
    std::optional<CaptureTime> from;
    /// The first instant after the window; not set for a window without an end.
    std::optional<CaptureTime> end;
    /// What seqData of that size is; else it is inferred from ASDUs all over the stream.
    std::optional<SampleLayout> layout;
    /// The rate, in place of what the stream tells.
    SampleRate rate;
    /// Whether missing samples are rows.
    SampleRows rows = SampleRows::received;
    /// Whether values are read. Without them, blocks have neither layout nor channels, places may
    /// be those of frames, and frames are read only where any has a refrTm: some times as fast.
    bool withValues = true;
    /// How many streams are gone through together, block by block, by readers beside each other;
    /// not 0. Of more streams, blocks are shorter, so that what one has read serves the others.
    std::size_t together = 1;
};

/// Reads the samples of an SV stream, block by block, in the order in which they were taken.
///
/// Copies over other LANs or lanes, packets that another file has too, and repeated samples are
/// left out; a late sample takes its place. smpCnt tells which samples are missing, but for whole
/// wraps of it, which arrival tells. Times go through the files as they are: a step of the
/// capture's clock changes no order, and begins a new run.
///
/// Memory is bounded, whatever the stream. The captures of the index are read again.
class SampleReader {
public:
    /// @param index    must outlive the reader
    /// @param stream   of the index, SV
    /// @param options  which samples, and as what
    TALIEC61850ANALYSIS_EXPORT SampleReader(TrafficIndex const& index, TrafficStream const& stream,
                                            SampleOptions options = {});
    /// Shares what it reads of the captures with another reader. Both are used on one thread.
    /// @param index, stream, options  as above
    /// @param beside  of a stream of the same index; need not outlive the reader
    TALIEC61850ANALYSIS_EXPORT SampleReader(TrafficIndex const& index, TrafficStream const& stream,
                                            SampleOptions options, SampleReader const& beside);
    /// What is moved from can be destroyed and assigned to.
    TALIEC61850ANALYSIS_EXPORT SampleReader(SampleReader&& other) noexcept;
    /// What is moved from can be destroyed and assigned to.
    TALIEC61850ANALYSIS_EXPORT SampleReader& operator=(SampleReader&& other) noexcept;
    TALIEC61850ANALYSIS_EXPORT ~SampleReader();

    /// Passes over what another reader went through: all that is before the end of its window.
    /// Where that was not met, nothing is passed over.
    /// @param before  of the same index and stream, with the same `rate` and `rows`, and a window
    ///                that ends where that of this reader begins, or earlier; read to its end
    TALIEC61850ANALYSIS_EXPORT void startAfter(SampleReader const& before);

    /// The next block, at most some thousand rows of it and never none. A run, a layout, a confRev
    /// or a data set that is another begins a block.
    /// @return null after the last; valid until the next call
    /// @throws std::system_error  a capture cannot be read, or no longer has the packets that the
    ///                            index says it has (ESTALE): there is no next block after that
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT SampleBlock const* next();

    /// What became of the samples of the stream that were gone through so far, those outside the
    /// window included.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT SampleCounts counts() const noexcept;

private:
    struct State;

    std::unique_ptr<State> state_;
};

}  // namespace TalIec61850Analysis
