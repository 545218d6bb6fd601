#pragma once

#include <TalIec61850Scl/match/CheckStation.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>
#include <nlohmann/json.hpp>
#include <string>

#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

/// A difference with what it is told by. All that it points to must outlive it.
struct DescribedDifference {
    TalIec61850Scl::Difference const* difference = nullptr;
    Protocol protocol = Protocol::goose;
    /// What messages should hold; null where that is not described.
    TalIec61850Scl::DataSet const* dataSet = nullptr;

    /// The member that has another type; null where there is none, or none by that path.
    [[nodiscard]] TalIec61850Scl::DataSetMember const* member() const;
};

/// A difference in words: "confRev: 2, described 1". Names are as they are in frames and
/// descriptions, not made safe for a terminal.
[[nodiscard]] std::string differenceText(DescribedDifference const& difference);

/// What is described, or what was found: a text of names, addresses, types and of an APPID; a list
/// of `options`; else a number: milliseconds of `maxTime`, samples a second of `smpRate`. Null
/// where there is none.
[[nodiscard]] nlohmann::ordered_json expectedJson(DescribedDifference const& difference);
[[nodiscard]] nlohmann::ordered_json foundJson(DescribedDifference const& difference);

}  // namespace TalIec61850Tools
