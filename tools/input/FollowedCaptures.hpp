#pragma once

#include <TalIec61850Analysis/traffic/TrafficFollower.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficOptions.hpp>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// What was added to a capture.
struct AddedTraffic {
    /// What the capture is called and opened by.
    std::string name;
    /// Of one file.
    TalIec61850Analysis::TrafficIndex index;
};

/// Captures that are written while they are read. Files that appear in a folder, as in a ring of
/// them, are captures too; those that are no captures yet may become some.
class FollowedCaptures {
public:
    /// @param arguments  files, which need not be there yet, and folders; not standard input
    FollowedCaptures(std::vector<std::string> arguments,
                     TalIec61850Analysis::TrafficOptions options);

    /// What was added since the call before, in the order of the arguments, a folder's by name.
    [[nodiscard]] std::vector<AddedTraffic> readOn();

    /// Arguments that nothing was read of so far, and that no fault was told of.
    [[nodiscard]] std::vector<std::string> unread() const;

    /// What cannot be read, since the call before: one line each, safe for a terminal. A file is
    /// named once.
    [[nodiscard]] std::vector<std::string> takeFaults();

private:
    void readFolder(std::string const& folder, std::vector<AddedTraffic>& added);
    void readFile(std::string const& path, std::vector<AddedTraffic>& added);
    void refuse(std::string const& path, std::string const& reason);

    std::vector<std::string> arguments_;
    TalIec61850Analysis::TrafficOptions options_;
    std::map<std::string, TalIec61850Analysis::TrafficFollower> followers_;
    /// Files that cannot be read; told once.
    std::set<std::string> refused_;
    /// Arguments that something was read of.
    std::set<std::string> read_;
    std::vector<std::string> faults_;
};

}  // namespace TalIec61850Tools
