#pragma once

/// @file
/// All of TalIec61850Scl: descriptions of stations, and what captures have of them.

/// @namespace TalIec61850Scl
/// What a station's own description (SCD, CID, ICD, IID, SSD) says of GOOSE and SV, and how
/// captures agree with it. What is wrong in a description is data with its place; only captures
/// that cannot be read throw, `std::system_error`, and memory that ends, `std::bad_alloc`.

#include <TalIec61850Scl/Version.hpp>
#include <TalIec61850Scl/match/BindMembers.hpp>
#include <TalIec61850Scl/match/CheckStation.hpp>
#include <TalIec61850Scl/match/MatchStreams.hpp>
#include <TalIec61850Scl/match/MessageBinder.hpp>
#include <TalIec61850Scl/model/BasicType.hpp>
#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>
#include <TalIec61850Scl/model/Diagnostic.hpp>
#include <TalIec61850Scl/model/StationDescription.hpp>
#include <TalIec61850Scl/read/ReadStation.hpp>
