#pragma once

#include <TalIec61850Parser/store/PackageFile.hpp>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

// Packet indexes made from times alone, and what binary searches in them compare with.

namespace TalTest {

using Times = std::vector<TalIec61850Parser::Timest>;

inline constexpr std::uint32_t kMax = std::numeric_limits<std::uint32_t>::max();
inline constexpr TalIec61850Parser::Timest kFirstTime = {0, 0};
inline constexpr TalIec61850Parser::Timest kLastTime = {kMax, kMax};

/// Adds a packet for each time to a file of the stream; its position is its place in the list.
template <typename Stream>
TalIec61850Parser::PackageFile const& fill(Stream const& stream, Times const& times,
                                           std::string const& name = "a") {
    TalIec61850Parser::PackageFile const& file = *stream.addFile(name);
    for (auto const& [seconds, nanoseconds] : times) {
        file.addPackage(seconds, nanoseconds, file.packages.size());
    }
    return file;
}

inline bool isBefore(TalIec61850Parser::Package const& package,
                     TalIec61850Parser::Timest const& time) {
    return package.time < time;
}

inline bool isBehind(TalIec61850Parser::Timest const& time,
                     TalIec61850Parser::Package const& package) {
    return time < package.time;
}

}  // namespace TalTest
