#include <TalIec61850Parser/store/PackageFile.hpp>
#include <functional>

namespace TalIec61850Parser {

PackageFile::PackageFile(std::string const& name) : fileName(name) {}

void PackageFile::addPackage(unsigned int seconds, unsigned int nanoseconds,
                             unsigned long position) const {
    packages.push_back({.time = {seconds, nanoseconds}, .position = position});
}

Timest PackageFile::getBeginTime() const {
    return packages.empty() ? Timest{} : packages.front().time;
}

Timest PackageFile::getEndTime() const {
    return packages.empty() ? Timest{} : packages.back().time;
}

std::size_t PackageFileHash::operator()(PackageFile const& file) const {
    return (*this)(std::string_view(file.fileName));
}

std::size_t PackageFileHash::operator()(std::string_view fileName) const {
    return fileName.empty() ? 0 : std::hash<std::string_view>{}(fileName);
}

}  // namespace TalIec61850Parser
