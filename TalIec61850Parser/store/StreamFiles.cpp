#include <TalIec61850Parser/store/StreamFiles.hpp>
#include <string_view>

namespace TalIec61850Parser::detail {

PackageFile const* findOrAddFile(PackageFileSet& files, std::string const& fileName) {
    // Nearly every packet finds its file: look before building an element to insert.
    if (auto const found = files.find(std::string_view(fileName)); found != files.end()) {
        return &*found;
    }
    return &*files.emplace(fileName).first;
}

}  // namespace TalIec61850Parser::detail
