#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Payload.hpp>
#include <TalIec61850Parser/store/StreamFiles.hpp>
#include <iterator>
#include <utility>

namespace TalIec61850Parser {

using detail::hashTerm;
using detail::payload;

static_assert(!noexcept(GooseHash{}(std::declval<Goose const&>())),
              "a noexcept hash is not cached, and streams of different VLANs "
              "would merge");

PackageFile const* Goose::addFile(std::string const& fileName) const {
    return detail::findOrAddFile(files, fileName);
}

std::map<PackageFile const*, FilteredPackagesResult> Goose::getfilteredPackages(
    Timest const& from, Timest const& to) const {
    std::map<PackageFile const*, FilteredPackagesResult> found;
    for (PackageFile const& file : files) {
        if (file.packages.empty()) {
            continue;
        }
        auto const window = detail::findWindow(file, from, to);
        auto& result = found[&file];
        result.packages = window.packages();
        if (window.first != file.packages.begin()) {
            result.previousPackage = &*std::prev(window.first);
        }
        if (window.after != file.packages.end()) {
            result.nextPackage = &*window.after;
        }
    }
    return found;
}

PackageIterator Goose::findFileNearestPackageIterator(PackageFile const* file,
                                                      Timest const& time) const {
    return detail::findNearestPackage(*file, time);
}

std::map<PackageFile const*, PackageIterator> Goose::findFilesNearestPackageIterator(
    Timest const& time) const {
    return detail::findNearestPackages(files, time);
}

std::size_t GooseHash::operator()(Goose const& goose) const {
    return hashTerm(goose.srcMac) ^ hashTerm(goose.dstMac) ^ hashTerm(goose.vlan) ^
           payload(goose.appId) ^ hashTerm(goose.gocbRef) ^ hashTerm(goose.datSet) ^
           hashTerm(goose.goID) ^ std::size_t{payload(goose.simulation)} ^ payload(goose.confRev);
}

bool GooseEqual::operator()(Goose const& a, Goose const& b) const {
    return payload(a.srcMac) == payload(b.srcMac) && payload(a.dstMac) == payload(b.dstMac) &&
           payload(a.appId) == payload(b.appId) &&
           payload(a.reserved1Bit0) == payload(b.reserved1Bit0) &&
           payload(a.gocbRef) == payload(b.gocbRef) && payload(a.datSet) == payload(b.datSet) &&
           payload(a.goID) == payload(b.goID) && payload(a.simulation) == payload(b.simulation) &&
           payload(a.confRev) == payload(b.confRev);
}

}  // namespace TalIec61850Parser
