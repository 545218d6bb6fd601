#pragma once

// Internal: the values of GOOSE messages, compared with the data set.

#include <TalIec61850Analysis/packet/DataView.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <TalIec61850Scl/match/DifferenceSet.hpp>
#include <TalIec61850Scl/match/MessageBinder.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>
#include <optional>

namespace TalIec61850Scl::detail {

/// Looks at the messages of a stream, one after the other. Those of the same make as the one before
/// are not looked into.
///
/// Where the number of values is another than described, their types are not compared: what follows
/// the value too many, or too few, is another for that reason alone.
class MemberWatch {
public:
    /// @param dataSet  outlives this
    explicit MemberWatch(DataSet const& dataSet) : dataSet_(dataSet), binder_(dataSet) {}

    /// @param allData  of the message; not set where it has none
    /// @param isCut    whether a snap length cut it: values that are not there are not missed
    void look(std::optional<TalIec61850Analysis::DataViews> const& allData, bool isCut,
              TalIec61850Analysis::PacketRef packet, DifferenceSet& differences);

private:
    void compare(TalIec61850Analysis::DataViews const& allData, MemberBinding const& binding,
                 bool isCut, TalIec61850Analysis::PacketRef packet,
                 DifferenceSet& differences) const;

    DataSet const& dataSet_;
    /// Of messages that are whole.
    MessageBinder binder_;
};

}  // namespace TalIec61850Scl::detail
