#pragma once

// Internal: what GOOSE and SV streams do alike with their packet indexes.

#include <TalIec61850Parser/store/PackageFile.hpp>
#include <TalIec61850Parser/store/Timest.hpp>
#include <map>
#include <string>
#include <vector>

namespace TalIec61850Parser::detail {

/// Finds the packet index of a capture file, or adds an empty one.
/// @return the element of that name, valid until it is erased; never null
PackageFile const* findOrAddFile(PackageFileSet& files, std::string const& fileName);

/// The part of a packet list that a time window selects, by binary search.
struct PackageWindow {
    /// The first packet not before the window.
    PackageIterator first;
    /// The first packet after the window; before `first` when the window ends before it starts.
    PackageIterator after;

    /// The packets inside; none when the window ends before it starts.
    [[nodiscard]] std::vector<Package const*> packages() const;
};

[[nodiscard]] PackageWindow findWindow(PackageFile const& file, Timest const& from,
                                       Timest const& to);

/// The last packet before `time`; the end of the list when there is none.
[[nodiscard]] PackageIterator findNearestPackage(PackageFile const& file, Timest const& time);

/// `findNearestPackage` of every file that has such a packet.
[[nodiscard]] std::map<PackageFile const*, PackageIterator> findNearestPackages(
    PackageFileSet const& files, Timest const& time);

}  // namespace TalIec61850Parser::detail
