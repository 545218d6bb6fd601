#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/store/GooseProto.hpp>
#include <TalIec61850Parser/store/SvProto.hpp>
#include <string>

namespace TalIec61850Parser {

/// The store: every stream found so far, with its packets per capture file.
///
/// Owns all it holds by value. References and pointers into it stay valid until their stream or
/// file is cleared or the store is destroyed. Not synchronised: one thread at a time.
struct TALIEC61850PARSER_EXPORT Db {
    /// The GOOSE streams.
    GooseProto gooseProto;
    /// The SV streams.
    SvProto svProto;

    /// Removes every stream, with its files and packets.
    void clear();

    /// Forgets one capture file: removes its packets from every stream, then every stream that is
    /// left without a file (also one that had none before). Counters of the others stay.
    /// @param fileName  the path as it was given to `PcapParser::parseFile`
    void clearByFileName(std::string const& fileName);

    /// `clearByFileName` for one protocol: GooseProto or SvProto.
    template <typename Proto>
    static void _clearProtoByFileName(std::string const& fileName, Proto& proto);
};

extern template TALIEC61850PARSER_EXPORT void Db::_clearProtoByFileName<GooseProto>(
    std::string const&, GooseProto&);
extern template TALIEC61850PARSER_EXPORT void Db::_clearProtoByFileName<SvProto>(std::string const&,
                                                                                 SvProto&);

}  // namespace TalIec61850Parser
