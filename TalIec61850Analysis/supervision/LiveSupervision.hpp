#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/file/FileIdentity.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace TalIec61850Analysis {

/// Supervises captures while they grow: tells each finding once.
///
/// Half a minute of the traffic is kept, and of a GOOSE stream with long intervals four messages
/// within ten minutes; each time all of that is gone through. So memory does not grow with time. A
/// finding is told one call after the packet that shows it was added, since one that is missing may
/// be late; calls a second apart are good ones. What lasts is told when it begins: how long, and
/// how often, is known then only as far as the packets go. What is said of copies over two ways is
/// told when packets of 400 ms after it are there, and what a GOOSE message means whose counters
/// fall, when the next one of its stream is.
///
/// Files may be removed or replaced, as those of a ring are: their packets are left out then. All
/// are taken to have one clock.
class LiveSupervision {
public:
    /// @param options  of superviseTraffic; a stop is not asked for
    TALIEC61850ANALYSIS_EXPORT explicit LiveSupervision(SupervisionOptions options = {});

    /// Adds what captures have gained, and tells what is certain by now.
    /// @param added  of TrafficFollower; may be an index of nothing, where nothing was added
    /// @param sink   called with the findings in the order of their times; their streams, files and
    ///               packets are those of `index`
    /// @throws std::system_error  a capture that is still there cannot be read again; what was
    ///                            added is kept, and told of by a later call
    TALIEC61850ANALYSIS_EXPORT void add(TrafficIndex added, FindingSink sink);

    /// Tells what was held back. To be called last.
    /// @throws std::system_error  as `add`
    TALIEC61850ANALYSIS_EXPORT void finish(FindingSink sink);

    /// What is kept of the captures, until the next call of `add`.
    [[nodiscard]] TrafficIndex const& index() const noexcept { return index_; }

private:
    /// @cond
    /// How far something is told of, in octets from the start of a file.
    struct Reach {
        std::uint64_t told = 0;
        std::uint64_t known = 0;
    };
    /// How far a file is told of.
    struct Progress {
        /// What it was when packets of it came first.
        FileIdentity identity;
        Reach all;
        /// What needs the copies over the other way.
        Reach copies;
    };
    /// A file, and octets from its start.
    using Spot = std::pair<std::uint32_t, std::uint64_t>;
    /// Where a file ended at some call, and the time there.
    struct Mark {
        std::uint32_t file = 0;
        std::uint64_t fileOffset = 0;
        std::int64_t time = 0;
    };
    /// @endcond

    void tell(bool areAll, FindingSink sink);
    void goOn();
    [[nodiscard]] Reach reachOf(Finding const& finding) const;
    [[nodiscard]] bool isNew(Finding const& finding, bool areAll);
    [[nodiscard]] bool isNewPause(Finding const& finding);
    void append(TrafficIndex added);
    void noteFiles();
    [[nodiscard]] std::vector<Finding> findAll();
    [[nodiscard]] std::vector<bool> haveParts() const;
    [[nodiscard]] bool isGone(std::uint32_t file) const;
    bool forgetGone();
    void forget();

    SupervisionOptions options_;
    TrafficIndex index_;
    /// By the number of the file.
    std::vector<Progress> files_;
    std::deque<Mark> marks_;
    /// Findings of whole files.
    std::set<std::pair<FindingKind, std::uint32_t>> ofFiles_;
    /// The packet before a pause that was told when it was too long already.
    std::map<std::pair<FindingKind, StreamKey>, Spot> pauses_;
    /// GOOSE messages that the next one of their stream says what they are; and those before.
    std::map<StreamKey, Spot> held_;
    std::map<StreamKey, Spot> heldBefore_;
};

}  // namespace TalIec61850Analysis
