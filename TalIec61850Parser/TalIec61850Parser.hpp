#pragma once

/// @file
/// All public names of the library. Each header can also be included by itself.

/// @namespace TalIec61850Parser
/// The library: indexing captures, asking the index, decoding single packets, judging single
/// frames.
///
/// Names that begin with an underscore are the steps of other operations. They may be called as any
/// other, and seldom need be.

/// @namespace TalIec61850
/// What identifies streams. TalIec61850Parser has these names as well.

/// @namespace cross
/// What is asked of the operating system.

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/Version.hpp>
#include <TalIec61850Parser/capture/EthernetHeader.hpp>
#include <TalIec61850Parser/capture/EthernetParser.hpp>
#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/IndexOptions.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <TalIec61850Parser/capture/PcapPacketHeader.hpp>
#include <TalIec61850Parser/capture/PcapPacketParser.hpp>
#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <TalIec61850Parser/cli/MemoryInfo.hpp>
#include <TalIec61850Parser/codec/Asn1Parser.hpp>
#include <TalIec61850Parser/codec/Asn1Tag.hpp>
#include <TalIec61850Parser/codec/BytesConverter.hpp>
#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/goose/GooseParserSimple.hpp>
#include <TalIec61850Parser/goose/GoosePdu.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <TalIec61850Parser/store/FilteredPackagesResult.hpp>
#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/GooseIdentifer.hpp>
#include <TalIec61850Parser/store/GooseProto.hpp>
#include <TalIec61850Parser/store/HsrInfo.hpp>
#include <TalIec61850Parser/store/Package.hpp>
#include <TalIec61850Parser/store/PackageFile.hpp>
#include <TalIec61850Parser/store/PrpInfo.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <TalIec61850Parser/store/SvIdentifer.hpp>
#include <TalIec61850Parser/store/SvProto.hpp>
#include <TalIec61850Parser/store/Timest.hpp>
#include <TalIec61850Parser/store/VlanInfo.hpp>
#include <TalIec61850Parser/sv/ASDUData.hpp>
#include <TalIec61850Parser/sv/SampleData.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <TalIec61850Parser/sv/SvParserSimple.hpp>
