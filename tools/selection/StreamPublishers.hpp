#pragma once

#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Scl/model/StationDescription.hpp>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace TalIec61850Tools {

/// Which control block publishes which stream, as `scl check` has it: by name first, then by the
/// address of control blocks that no stream has the name of. For that, all streams have to be seen,
/// selected or not; one that was not seen is looked up by itself. On any number of threads.
class StreamPublishers {
public:
    /// @param station  must outlive this
    explicit StreamPublishers(TalIec61850Scl::StationDescription const& station)
        : station_(station) {}
    StreamPublishers(StreamPublishers const&) = delete;
    StreamPublishers& operator=(StreamPublishers const&) = delete;
    ~StreamPublishers() = default;

    /// Notes that captures have a stream.
    void see(TalIec61850Analysis::StreamKey const& stream);

    /// What publishes a stream, by what was seen so far; null where it is not described.
    [[nodiscard]] TalIec61850Scl::ControlBlock const* of(
        TalIec61850Analysis::StreamKey const& stream);

    /// Whether one of the IEDs may be what publishes a stream, before all are seen.
    /// @param ieds  in which * matches any text and ? any character; none for all
    [[nodiscard]] bool mayBeOf(std::vector<std::string> const& ieds,
                               TalIec61850Analysis::StreamKey const& stream) const;

private:
    void settle();

    TalIec61850Scl::StationDescription const& station_;
    std::mutex mutex_;
    std::set<TalIec61850Analysis::StreamKey> seen_;
    std::unordered_map<TalIec61850Analysis::StreamKey, TalIec61850Scl::ControlBlock const*,
                       TalIec61850Analysis::StreamKeyHash>
        known_;
    /// Whether `known_` has all that were seen.
    bool isSettled_ = true;
};

}  // namespace TalIec61850Tools
