#include <TalIec61850Parser/store/Db.hpp>
#include <string_view>
#include <utility>

namespace TalIec61850Parser {

void Db::clear() {
    gooseProto.streams.clear();
    svProto.streams.clear();
}

namespace {

/// @param fileName  a copy: the caller's may be in a record that is erased
template <typename Proto>
void forgetFile(std::string fileName, Proto& proto) {
    std::erase_if(proto.streams, [&](auto const& stream) {
        auto const file = stream.files.find(std::string_view(fileName));
        if (file != stream.files.end()) {
            stream.files.erase(file);
        }
        return stream.files.empty();
    });
}

}  // namespace

void Db::clearByFileName(std::string const& fileName) {
    std::string copy = fileName;
    forgetFile(copy, gooseProto);
    forgetFile(std::move(copy), svProto);
}

template <typename Proto>
void Db::_clearProtoByFileName(std::string const& fileName, Proto& proto) {
    forgetFile(fileName, proto);
}

template void Db::_clearProtoByFileName<GooseProto>(std::string const&, GooseProto&);
template void Db::_clearProtoByFileName<SvProto>(std::string const&, SvProto&);

}  // namespace TalIec61850Parser
