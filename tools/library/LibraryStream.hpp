#pragma once

#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

/// What tells one stream from others, as the store of the library holds it. What a protocol does
/// not have is not set.
struct LibraryStream {
    Protocol protocol = Protocol::goose;
    std::optional<std::string> source;
    std::optional<std::string> destination;
    std::optional<TalIec61850Parser::VlanInfo> vlan;
    /// Tells SV streams apart; of a GOOSE stream this is only what its first packet had.
    std::optional<TalIec61850Parser::HsrInfo> hsr;
    /// Of the stream's first packet; tells no streams apart.
    std::optional<TalIec61850Parser::PrpInfo> prp;
    std::optional<std::uint64_t> appId;
    std::optional<std::uint8_t> reserved1Bit0;
    std::optional<std::string> svID;
    std::optional<std::string> gocbRef;
    std::optional<std::string> datSet;
    std::optional<std::string> goID;
    std::optional<std::uint64_t> confRev;
    /// GOOSE: whether the frames carry the simulation element, be it true or false.
    std::optional<bool> simulationPresent;
};

[[nodiscard]] LibraryStream identityOf(TalIec61850Parser::Goose const& goose);
[[nodiscard]] LibraryStream identityOf(TalIec61850Parser::Sv const& sv);

/// The order of streams: GOOSE before SV, then by destination, APPID, names, and whatever else
/// tells streams apart, so that it is the same at every run.
[[nodiscard]] bool comesBefore(LibraryStream const& a, LibraryStream const& b);

}  // namespace TalIec61850Tools
