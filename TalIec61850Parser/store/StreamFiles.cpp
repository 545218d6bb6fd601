#include <TalIec61850Parser/store/StreamFiles.hpp>
#include <algorithm>
#include <cstddef>
#include <deque>
#include <iterator>
#include <optional>
#include <string_view>

namespace TalIec61850Parser::detail {

namespace {

using Packages = std::deque<Package>;

/// What a binary search has left: the packets from `first` on, as many as `count`.
struct Remainder {
    std::size_t first = 0;
    std::size_t count = 0;

    [[nodiscard]] std::size_t middle() const { return first + count / 2; }

    /// What is left once it is known whether the answer lies behind the middle packet.
    [[nodiscard]] Remainder half(bool isBehind) const {
        return isBehind ? Remainder{.first = middle() + 1, .count = count - count / 2 - 1}
                        : Remainder{.first = first, .count = count / 2};
    }
};

double toSeconds(Timest const& time) { return time.seconds + 1e-9 * time.nanoseconds; }

/// Where a packet of this time lies if they come at an even pace; for long lists only.
std::optional<std::size_t> guessPlace(Packages const& packages, Timest const& time) {
    constexpr std::size_t longList = std::size_t{1} << 19U;  // more than a cache holds
    if (packages.size() < longList) {
        return std::nullopt;
    }
    double const begin = toSeconds(packages.front().time);
    double const share = (toSeconds(time) - begin) / (toSeconds(packages.back().time) - begin);
    if (!(share >= 0 && share <= 1)) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(share * static_cast<double>(packages.size() - 1));
}

/// Has the packets fetched that a search will ask if it ends at this place: a long search is
/// otherwise spent waiting for memory, one packet after the other. A wrong guess costs little.
/// Inline always: g++ 12 takes a function that only prefetches for one that does nothing, and
/// leaves out the calls of it.
[[gnu::always_inline]] inline void prefetchSearch(Packages const& packages, Remainder left,
                                                  std::optional<std::size_t> place) {
    while (place && left.count > 0) {
        __builtin_prefetch(&packages[left.middle()]);
        left = left.half(left.middle() < *place);
    }
}

/// std::partition_point, step for step: in a list that is out of order both find the same place.
/// @param isBehind  whether the answer lies behind a packet of this time
template <typename IsBehind>
std::size_t search(Packages const& packages, Remainder left, IsBehind const& isBehind) {
    while (left.count > 0) {
        left = left.half(isBehind(packages[left.middle()].time));
    }
    return left.first;
}

PackageIterator firstNotBefore(PackageFile const& file, Timest const& time) {
    Packages const& packages = file.packages;
    Remainder const all{.first = 0, .count = packages.size()};
    prefetchSearch(packages, all, guessPlace(packages, time));
    auto const found = search(packages, all, [&](Timest const& at) { return at < time; });
    return packages.begin() + static_cast<std::ptrdiff_t>(found);
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
    if (first < behind) {
        inside.reserve(static_cast<std::size_t>(behind - first));
        std::transform(first, behind, std::back_inserter(inside),
                       [](Package const& package) { return &package; });
    }
    return inside;
}

PackageWindow findWindow(PackageFile const& file, Timest const& from, Timest const& to) {
    Packages const& packages = file.packages;
    auto const isBeforeBegin = [&](Timest const& at) { return at < from; };
    auto const isNotBehindEnd = [&](Timest const& at) { return !(to < at); };
    Remainder left{.first = 0, .count = packages.size()};
    prefetchSearch(packages, left, guessPlace(packages, from));
    // Both searches ask the same packets until one falls into the window.
    while (left.count > 0) {
        Timest const& at = packages[left.middle()].time;
        if (isBeforeBegin(at) != isNotBehindEnd(at)) {
            break;
        }
        left = left.half(isBeforeBegin(at));
    }
    prefetchSearch(packages, left, guessPlace(packages, to));
    auto const iteratorTo = [&](std::size_t index) {
        return packages.begin() + static_cast<std::ptrdiff_t>(index);
    };
    return {.first = iteratorTo(search(packages, left, isBeforeBegin)),
            .behind = iteratorTo(search(packages, left, isNotBehindEnd))};
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
