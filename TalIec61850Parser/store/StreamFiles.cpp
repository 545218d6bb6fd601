#include <TalIec61850Parser/store/StreamFiles.hpp>
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace TalIec61850Parser::detail {

namespace {

PackageIterator firstNotBefore(PackageFile const& file, Timest const& time) {
    return std::lower_bound(
        file.packages.begin(), file.packages.end(), time,
        [](Package const& package, Timest const& at) { return package.time < at; });
}

PackageIterator firstAfter(PackageFile const& file, Timest const& time) {
    return std::upper_bound(
        file.packages.begin(), file.packages.end(), time,
        [](Timest const& at, Package const& package) { return at < package.time; });
}

}  // namespace

PackageFile const* findOrAddFile(PackageFileSet& files, std::string const& fileName) {
    // Nearly every packet finds its file: look before building an element to insert.
    if (auto const found = files.find(std::string_view(fileName)); found != files.end()) {
        return &*found;
    }
    return &*files.emplace(fileName).first;
}

std::vector<Package const*> PackageWindow::packages() const {
    std::vector<Package const*> inside;
    if (first < after) {
        inside.reserve(static_cast<std::size_t>(after - first));
        std::transform(first, after, std::back_inserter(inside),
                       [](Package const& package) { return &package; });
    }
    return inside;
}

PackageWindow findWindow(PackageFile const& file, Timest const& from, Timest const& to) {
    return {.first = firstNotBefore(file, from), .after = firstAfter(file, to)};
}

PackageIterator findNearestPackage(PackageFile const& file, Timest const& time) {
    auto const notBefore = firstNotBefore(file, time);
    return notBefore == file.packages.begin() ? file.packages.end() : std::prev(notBefore);
}

std::map<PackageFile const*, PackageIterator> findNearestPackages(PackageFileSet const& files,
                                                                  Timest const& time) {
    std::map<PackageFile const*, PackageIterator> found;
    for (PackageFile const& file : files) {
        if (auto const nearest = findNearestPackage(file, time); nearest != file.packages.end()) {
            found.emplace(&file, nearest);
        }
    }
    return found;
}

}  // namespace TalIec61850Parser::detail
