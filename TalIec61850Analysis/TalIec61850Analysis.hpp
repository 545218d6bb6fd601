#pragma once

/// @file
/// All public names of the library. Each header can also be included by itself.

/// @namespace TalIec61850Analysis
/// What was really on the wire: captures read record by record, and packets decoded in full, each
/// counter at its own width. Damage in a file is data with its place; only the operating system
/// throws, `std::system_error`, and memory that ends, `std::bad_alloc`.

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/Version.hpp>
#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <TalIec61850Analysis/file/CaptureDamage.hpp>
#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/file/CaptureRecords.hpp>
#include <TalIec61850Analysis/file/CaptureSurvey.hpp>
#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <TalIec61850Analysis/file/FileIdentity.hpp>
#include <TalIec61850Analysis/file/PacketFrames.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <TalIec61850Analysis/time/TimeWindow.hpp>
