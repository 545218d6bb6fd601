#pragma once

#include <TalIec61850Analysis/file/ReadMode.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stop_token>

namespace TalIec61850Analysis {

/// What is indexed, and how.
struct TrafficOptions {
    /// Which streams are kept; all where it is empty. Called once for each stream of a file, on
    /// the thread that indexes the file: with several files, on several threads at a time. Frames
    /// of other streams are counted alone.
    std::function<bool(StreamKey const&)> keeps = {};
    /// Ends indexing soon after a stop is requested; what was read until then is in the index.
    std::stop_token stop = {};
    /// Called now and then with the octets that were read of all files, and how many there are.
    /// Never by two threads at a time, but not always by the same one. It must not throw.
    std::function<void(std::uint64_t done, std::uint64_t all)> progress = {};
    /// How many files are indexed at a time; 0 for as many as the machine has cores. The index does
    /// not depend on it.
    std::size_t jobs = 1;
    /// How each file is read; reading ahead takes a second thread for each of the jobs. The index
    /// does not depend on it.
    ReadMode read = ReadMode::plain;
};

}  // namespace TalIec61850Analysis
