#include <TalIec61850Parser/store/Db.hpp>

namespace TalIec61850Parser {

void Db::clear() {
    gooseProto.streams.clear();
    svProto.streams.clear();
}

void Db::clearByFileName(std::string const& fileName) {
    // The caller's name may lie in a record that is erased.
    std::string const name = fileName;  // NOLINT(performance-unnecessary-copy-initialization)
    _clearProtoByFileName(name, gooseProto);
    _clearProtoByFileName(name, svProto);
}

template <typename Proto>
void Db::_clearProtoByFileName(std::string const& fileName, Proto& proto) {
    // As above, for direct calls.
    std::string const name = fileName;  // NOLINT(performance-unnecessary-copy-initialization)
    std::erase_if(proto.streams, [&](auto const& stream) {
        std::erase_if(stream.files, [&](PackageFile const& file) { return file.fileName == name; });
        return stream.files.empty();
    });
}

template void Db::_clearProtoByFileName<GooseProto>(std::string const&, GooseProto&);
template void Db::_clearProtoByFileName<SvProto>(std::string const&, SvProto&);

}  // namespace TalIec61850Parser
