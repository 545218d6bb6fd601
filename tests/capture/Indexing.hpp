#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/IndexOptions.hpp>
#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <deque>
#include <iostream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "capture/StreamCapture.hpp"
#include "support/Bytes.hpp"
#include "support/TempFile.hpp"

// Indexing a capture, and the index as something that can be compared and printed.

namespace TalTest {

/// What indexing one capture left behind.
struct Indexed {
    std::string path;
    TalIec61850Parser::Db db;
    /// The fractions that the progress callback was given.
    std::vector<double> progress;
    /// What was written to the standard streams meanwhile.
    std::string output;
    std::string errors;
};

inline Indexed indexFileOnce(std::string const& path, TalIec61850Parser::Filter const& filter,
                             bool stopped, TalIec61850Parser::IndexOptions const& options) {
    Indexed result;
    result.path = path;
    std::atomic<bool> const stopFlag = stopped;
    StreamCapture const output(std::cout);
    StreamCapture const errors(std::cerr);
    TalIec61850Parser::PcapParser::parseFile(
        path, result.db, filter, stopFlag,
        [&result](double fraction) { result.progress.push_back(fraction); }, options);
    result.output = output.text();
    result.errors = errors.text();
    return result;
}

/// The only element of a set.
/// @throws std::logic_error when it has none, or several
template <typename Set>
auto const& only(Set const& set) {
    if (set.size() != 1)
        throw std::logic_error("not one element but " + std::to_string(set.size()));
    return *set.begin();
}

/// The packets of a stream that occurs in one capture file.
template <typename Stream>
std::deque<TalIec61850Parser::Package> const& packagesOf(Stream const& stream) {
    return only(stream.files).packages;
}

namespace listing {

template <typename Value>
void put(std::ostream& out, std::optional<Value> const& member) {
    if constexpr (sizeof(Value) == 1 && !std::is_same_v<Value, char>) {
        member ? out << ' ' << +*member : out << " -";
    } else {
        member ? out << ' ' << *member : out << " -";
    }
}

template <typename Identifer>
void putLinkLayer(std::ostream& out, Identifer const& id) {
    put(out, id.srcMac);
    put(out, id.dstMac);
    out << " vlan";
    put(out, id.vlan ? id.vlan->vlanId : std::nullopt);
    out << " hsr";
    put(out, id.hsr ? id.hsr->lanId : std::nullopt);
    out << " prp";
    put(out, id.prp ? id.prp->lanId : std::nullopt);
    out << " app";
    put(out, id.appId);
    put(out, id.reserved1Bit0);
}

inline std::string identity(TalIec61850::GooseIdentifer const& id) {
    std::ostringstream out;
    out << "GOOSE";
    putLinkLayer(out, id);
    put(out, id.gocbRef);
    put(out, id.datSet);
    put(out, id.goID);
    put(out, id.simulation);
    put(out, id.confRev);
    return out.str();
}

inline std::string identity(TalIec61850::SvIdentifer const& id) {
    std::ostringstream out;
    out << "SV";
    putLinkLayer(out, id);
    put(out, id.svID);
    put(out, id.confRev);
    return out.str();
}

inline std::string statistics(TalIec61850Parser::Goose const& goose) {
    return " packets " + std::to_string(goose.packetCount);
}

inline std::string statistics(TalIec61850Parser::Sv const& sv) {
    return " packets " + std::to_string(sv.packetCount) + " maxSmpCnt " +
           std::to_string(sv.maxSmpCnt) + " smpRate " + std::to_string(sv.smpRate) + " maxNoASDU " +
           std::to_string(sv.maxNoASDU);
}

template <typename Streams>
void putStreams(std::vector<std::string>& lines, Streams const& streams) {
    for (auto const& stream : streams) lines.push_back(identity(stream) + statistics(stream));
}

template <typename Streams>
void putPackets(std::vector<std::string>& lines, Streams const& streams) {
    for (auto const& stream : streams) {
        for (auto const& file : stream.files) {
            for (auto const& package : file.packages) {
                lines.push_back(identity(stream) + " at " + std::to_string(package.time.seconds) +
                                '.' + std::to_string(package.time.nanoseconds) + " position " +
                                std::to_string(package.position));
            }
        }
    }
}

}  // namespace listing

/// One line for each stream of the store, identity and statistics, sorted.
inline std::vector<std::string> streamLines(TalIec61850Parser::Db const& db) {
    std::vector<std::string> lines;
    listing::putStreams(lines, db.gooseProto.streams);
    listing::putStreams(lines, db.svProto.streams);
    std::sort(lines.begin(), lines.end());
    return lines;
}

/// One line for each packet of the store, whatever its file: stream, time and position, sorted.
inline std::vector<std::string> packetLines(TalIec61850Parser::Db const& db) {
    std::vector<std::string> lines;
    listing::putPackets(lines, db.gooseProto.streams);
    listing::putPackets(lines, db.svProto.streams);
    std::sort(lines.begin(), lines.end());
    return lines;
}

inline bool isEmpty(TalIec61850Parser::Db const& db) {
    return db.gooseProto.streams.empty() && db.svProto.streams.empty();
}

/// Indexes a capture file with and without reading ahead.
/// @throws std::logic_error when anything depends on that
inline Indexed indexFile(std::string const& path, TalIec61850Parser::Filter const& filter = {},
                         bool stopped = false) {
    Indexed result = indexFileOnce(path, filter, stopped, {});
    Indexed const ahead = indexFileOnce(path, filter, stopped, {.readAhead = true});
    if (streamLines(ahead.db) != streamLines(result.db) ||
        packetLines(ahead.db) != packetLines(result.db) || ahead.progress != result.progress ||
        ahead.output != result.output || ahead.errors != result.errors)
        throw std::logic_error("read ahead, it is indexed otherwise: " + path);
    return result;
}

inline Indexed indexCapture(Bytes const& capture, TalIec61850Parser::Filter const& filter = {},
                            bool stopped = false) {
    TempFile const file(capture);
    return indexFile(file.path(), filter, stopped);
}

}  // namespace TalTest
