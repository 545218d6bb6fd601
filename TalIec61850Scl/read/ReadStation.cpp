#include <TalIec61850Scl/read/FileOctets.hpp>
#include <TalIec61850Scl/read/ReadFile.hpp>
#include <TalIec61850Scl/read/ReadStation.hpp>
#include <TalIec61850Scl/read/StationJoiner.hpp>
#include <cstdint>
#include <utility>

namespace TalIec61850Scl {

StationDescription readStation(std::span<std::string const> paths) {
    detail::StationJoiner joiner({paths.begin(), paths.end()});
    for (std::uint32_t file = 0; file < paths.size(); ++file) {
        joiner.add(detail::readFile(detail::loadFile(paths[file]), file));
    }
    return joiner.join();
}

StationDescription readStation(std::string_view text, std::string path) {
    detail::StationJoiner joiner({std::move(path)});
    joiner.add(detail::readFile(detail::copyOctets(text), 0));
    return joiner.join();
}

}  // namespace TalIec61850Scl
