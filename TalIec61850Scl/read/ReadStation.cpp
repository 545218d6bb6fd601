#include <TalIec61850Scl/read/FileOctets.hpp>
#include <TalIec61850Scl/read/ReadFile.hpp>
#include <TalIec61850Scl/read/ReadStation.hpp>
#include <TalIec61850Scl/read/StationJoiner.hpp>
#include <cstdint>
#include <system_error>
#include <utility>

namespace TalIec61850Scl {

namespace {

detail::FileContent readPath(std::string const& path, std::uint32_t file) {
    detail::FileOctets octets;
    try {
        octets = detail::loadFile(path);
    } catch (std::system_error const& error) {
        detail::FileContent nothing;
        nothing.diagnostics.add(DiagnosticCode::unreadableFile, {.file = file, .line = 0},
                                error.code().message());
        return nothing;
    }
    return detail::readFile(std::move(octets), file);
}

}  // namespace

StationDescription readStation(std::span<std::string const> paths) {
    detail::StationJoiner joiner({paths.begin(), paths.end()});
    for (std::uint32_t file = 0; file < paths.size(); ++file) {
        joiner.add(readPath(paths[file], file));
    }
    return joiner.join();
}

StationDescription readStation(std::string_view text, std::string path) {
    detail::StationJoiner joiner({std::move(path)});
    joiner.add(detail::readFile(detail::copyOctets(text), 0));
    return joiner.join();
}

}  // namespace TalIec61850Scl
