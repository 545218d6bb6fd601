#pragma once

#include <string_view>

#include "bench/Settings.hpp"

// What is measured. Each function writes its rows of the table.

namespace TalBench {

/// Indexing one workload, against reading the file, libpcap's loop and, for some, tshark; for some
/// also with a progress callback against without.
/// @param name  of one of the workloads
void measureIndex(std::string_view name, Settings const& settings);

/// `measureIndex` of every workload but those whose streams grow in number.
void measureIndexes(Settings const& settings);

/// Indexing while another thread reads the file, against reading it; nothing where processor time
/// is counted. It takes two processors: other work on the machine shows here first.
/// @throws std::runtime_error when a limit is exceeded
void measureAhead(Settings const& settings);

/// Nanoseconds per frame as captures grow in frames, and in streams.
void measureGrowth(Settings const& settings);

/// Time windows and nearest packets, against a binary search in the same list.
void measureQueries(Settings const& settings);

/// Decoding one packet from its file, against reading its octets.
void measureDecode(Settings const& settings);

/// Decoding frames in memory with the analysis library: as views, as owning forms, and with tshark.
/// @throws std::runtime_error when a limit is exceeded
void measurePackets(Settings const& settings);

/// Capture files: one format against the other, and finding a record by its offset.
void measureFiles(Settings const& settings);

/// The index true to the wire: against the given library's, its memory, reading
/// ahead, and several threads.
void measureTraffic(Settings const& settings);

/// Columns of samples, against reading the file and against indexing it.
void measureSamples(Settings const& settings);

/// Supervision and events, with indexing the capture, against indexing alone.
void measureChecks(Settings const& settings);

/// Reading a large description of a station, against parsing its XML.
void measureDescriptions(Settings const& settings);

/// Judging a single frame, against copying it; and what it allocates.
void measureJudge(Settings const& settings);

/// What the index weighs, and what indexing allocates.
void measureMemory(Settings const& settings);

/// Time and memory per octet of inputs built to hurt, against those of an ordinary capture.
/// @throws std::runtime_error when a limit is exceeded
void measureHostile(Settings const& settings);

}  // namespace TalBench
