#include <TalIec61850Parser/store/Db.hpp>

namespace TalIec61850Parser {

void Db::clear() {
    gooseProto.streams.clear();
    svProto.streams.clear();
}

void Db::clearByFileName(std::string const& fileName) {
    std::string const name = fileName;  // the caller's may lie in a record that is erased
    _clearProtoByFileName(name, gooseProto);
    _clearProtoByFileName(name, svProto);
}

template <typename Proto>
void Db::_clearProtoByFileName(std::string const& fileName, Proto& proto) {
    std::string const name = fileName;  // as above, for direct calls
    std::erase_if(proto.streams, [&](auto const& stream) {
        std::erase_if(stream.files, [&](PackageFile const& file) { return file.fileName == name; });
        return stream.files.empty();
    });
}

template void Db::_clearProtoByFileName<GooseProto>(std::string const&, GooseProto&);
template void Db::_clearProtoByFileName<SvProto>(std::string const&, SvProto&);

}  // namespace TalIec61850Parser
