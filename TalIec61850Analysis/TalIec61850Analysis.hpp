#pragma once

/// @file
/// All public names of the library. Each header can also be included by itself.

/// @namespace TalIec61850Analysis
/// What was really on the wire: captures read record by record, and packets decoded in full, each
/// counter at its own width; and what was measured, written as COMTRADE. Damage in a file is data
/// with its place; only the operating system throws, `std::system_error`, and memory that ends,
/// `std::bad_alloc`. A call that breaks what its description asks for may throw a
/// `std::logic_error`.

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/Version.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeFile.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeFormat.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeLimit.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRecord.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeRows.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeStep.hpp>
#include <TalIec61850Analysis/events/FindEvents.hpp>
#include <TalIec61850Analysis/events/GooseEvent.hpp>
#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <TalIec61850Analysis/file/CaptureDamage.hpp>
#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/file/CaptureFormat.hpp>
#include <TalIec61850Analysis/file/CaptureInterface.hpp>
#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/file/CaptureSurvey.hpp>
#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <TalIec61850Analysis/file/FileIdentity.hpp>
#include <TalIec61850Analysis/file/PacketFrames.hpp>
#include <TalIec61850Analysis/file/ReadMode.hpp>
#include <TalIec61850Analysis/file/RecordMap.hpp>
#include <TalIec61850Analysis/packet/AsduContent.hpp>
#include <TalIec61850Analysis/packet/AsduView.hpp>
#include <TalIec61850Analysis/packet/BinaryTime.hpp>
#include <TalIec61850Analysis/packet/BitString.hpp>
#include <TalIec61850Analysis/packet/ChannelSample.hpp>
#include <TalIec61850Analysis/packet/DataKind.hpp>
#include <TalIec61850Analysis/packet/DataValue.hpp>
#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/packet/DoublePoint.hpp>
#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/Fault.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/GooseView.hpp>
#include <TalIec61850Analysis/packet/Integer.hpp>
#include <TalIec61850Analysis/packet/ObjectId.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/packet/Quality.hpp>
#include <TalIec61850Analysis/packet/RawElement.hpp>
#include <TalIec61850Analysis/packet/SampleQuality.hpp>
#include <TalIec61850Analysis/packet/Sink.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <TalIec61850Analysis/packet/SvView.hpp>
#include <TalIec61850Analysis/redundancy/CopyCounts.hpp>
#include <TalIec61850Analysis/redundancy/PairCopies.hpp>
#include <TalIec61850Analysis/redundancy/RedundancyFault.hpp>
#include <TalIec61850Analysis/samples/ArrivalResiduals.hpp>
#include <TalIec61850Analysis/samples/DecodeSample.hpp>
#include <TalIec61850Analysis/samples/FindLayouts.hpp>
#include <TalIec61850Analysis/samples/LayoutInference.hpp>
#include <TalIec61850Analysis/samples/SampleBlock.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/samples/SampleRate.hpp>
#include <TalIec61850Analysis/samples/SampleReader.hpp>
#include <TalIec61850Analysis/samples/SampleRun.hpp>
#include <TalIec61850Analysis/samples/SampleTimeSource.hpp>
#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/supervision/LiveSupervision.hpp>
#include <TalIec61850Analysis/supervision/StreamSummary.hpp>
#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <TalIec61850Analysis/traffic/CaptureSummary.hpp>
#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <TalIec61850Analysis/traffic/StreamAttributes.hpp>
#include <TalIec61850Analysis/traffic/StreamKey.hpp>
#include <TalIec61850Analysis/traffic/TrafficFollower.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficOptions.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
