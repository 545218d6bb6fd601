#include <TalIec61850Parser/store/Payload.hpp>
#include <TalIec61850Parser/store/StreamFiles.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <optional>
#include <utility>

namespace TalIec61850Parser {

using detail::hashTerm;
using detail::payload;

namespace {

static_assert(!noexcept(SvHash{}(std::declval<Sv const&>())),
              "a noexcept hash is not cached, and every lookup would hash the "
              "stored names again");

bool equalVlan(std::optional<VlanInfo> const& a, std::optional<VlanInfo> const& b) {
    auto const same = [&](auto member) { return payload(a, member) == payload(b, member); };
    return same(&VlanInfo::priority) && same(&VlanInfo::dei) && same(&VlanInfo::vlanId);
}

bool equalHsr(std::optional<HsrInfo> const& a, std::optional<HsrInfo> const& b) {
    auto const same = [&](auto member) { return payload(a, member) == payload(b, member); };
    return same(&HsrInfo::hsrSpare1) && same(&HsrInfo::lanId) && same(&HsrInfo::hsrSpare2) &&
           same(&HsrInfo::hsrSpare3);
}

}  // namespace

PackageFile const* Sv::addFile(std::string const& fileName) const {
    return detail::findOrAddFile(files, fileName);
}

std::map<PackageFile const*, std::vector<Package const*>> Sv::getfilteredPackages(
    Timest const& from, Timest const& to) const {
    std::map<PackageFile const*, std::vector<Package const*>> found;
    for (PackageFile const& file : files) {
        if (auto packages = detail::findWindow(file, from, to).packages(); !packages.empty()) {
            found.emplace(&file, std::move(packages));
        }
    }
    return found;
}

PackageIterator Sv::findFileNearestPackageIterator(PackageFile const* file,
                                                   Timest const& time) const {
    return detail::findNearestPackage(*file, time);
}

std::map<PackageFile const*, PackageIterator> Sv::findFilesNearestPackageIterator(
    Timest const& time) const {
    return detail::findNearestPackages(files, time);
}

std::size_t SvHash::operator()(Sv const& sv) const {
    return hashTerm(sv.srcMac) ^ hashTerm(sv.dstMac) ^ hashTerm(sv.vlan) ^ payload(sv.appId) ^
           hashTerm(sv.svID) ^ payload(sv.reserved1Bit0) ^ payload(sv.confRev);
}

bool SvEqual::operator()(Sv const& a, Sv const& b) const {
    return payload(a.srcMac) == payload(b.srcMac) && payload(a.dstMac) == payload(b.dstMac) &&
           equalVlan(a.vlan, b.vlan) && equalHsr(a.hsr, b.hsr) &&
           payload(a.appId) == payload(b.appId) && payload(a.svID) == payload(b.svID) &&
           payload(a.reserved1Bit0) == payload(b.reserved1Bit0) &&
           payload(a.confRev) == payload(b.confRev);
}

}  // namespace TalIec61850Parser
