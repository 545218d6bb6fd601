#pragma once

#include <TalIec61850Parser/store/Package.hpp>
#include <vector>

namespace TalIec61850Parser {

/// What a time window holds of one capture file, and the packets on either side of it.
///
/// The pointers lead into the stream's PackageFile and stay valid until that file is erased.
struct FilteredPackagesResult {
    /// Every packet from the start to the end of the window, both included, in list order.
    std::vector<Package const*> packages;
    /// The last packet before the window; null when there is none.
    Package const* previousPackage = nullptr;
    /// The first packet after the window; null when there is none.
    Package const* nextPackage = nullptr;
};

}  // namespace TalIec61850Parser
