#pragma once

#include <TalIec61850Analysis/events/GooseEvent.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <string>
#include <vector>

#include "tools/names/MemberNames.hpp"
#include "tools/output/RowLayout.hpp"
#include "tools/output/RowLines.hpp"
#include "tools/render/MemberText.hpp"

namespace TalIec61850Tools {

/// A state change of a GOOSE stream. All that is pointed to outlives the row.
struct EventRow {
    TalIec61850Analysis::GooseEvent const* event = nullptr;
    /// The stream that changed.
    TalIec61850Analysis::TrafficStream const* stream = nullptr;
    /// The one that changed next; null without one.
    TalIec61850Analysis::TrafficStream const* next = nullptr;
    /// The capture as it was given.
    std::string const* file = nullptr;
    /// Those of the event that are written.
    std::vector<TalIec61850Analysis::MemberChange const*> changes;
    /// Those of the values of its message.
    MemberNames names = {};
    /// What publishes the stream; null where it is not described.
    TalIec61850Scl::ControlBlock const* controlBlock = nullptr;
    /// Whether texts for people have the IED in front of a name.
    bool withIeds = false;

    /// Whether it is known what changed.
    [[nodiscard]] bool areChangesKnown() const {
        return event->data == TalIec61850Analysis::EventData::compared ||
               event->data == TalIec61850Analysis::EventData::otherMake;
    }
};

/// How events are written. Names and order of the fields are stable; what an event lacks is null.
///
///     time                text       when its message was captured, UTC
///     timeNs              integer    the same in nanoseconds since 1970
///     gocbRef             text
///     source              text       source address
///     appId               text       0x4000
///     t                   text       when the state began, as the publisher says, UTC
///     tNs                 integer    the same in nanoseconds since 1970
///     tQuality            text       what the quality of t says
///     delayNs             integer    timeNs less tNs
///     stNum               integer
///     previousStNum       integer
///     sqNum               integer
///     changes             array      objects of member, name, from, to; in csv a text; null where
///                                    it is not known what changed
///     retransmissionsNs   array      when messages of the state came again, after timeNs; in csv
///                                    numbers with blanks between
///     retransmissions     integer    how many came, listed or not
///     timeAllowedtoLive   integer    milliseconds
///     longestIntervalNs   integer    between two messages of the state
///     nextStream          text       gocbRef of the stream that changed next
///     nextNs              integer    how long after
///     file                text       the capture as it was given
///     position            integer    offset in the file of the goosePdu
///
/// With a description, at the end:
///
///     ied                 text       what publishes the stream
///     controlBlock        text       its control block, as described
///
/// @param areDescribed  whether streams are looked up in a description
[[nodiscard]] RowLayout<EventRow> eventRowLayout(Format format, bool areDescribed = false);

}  // namespace TalIec61850Tools
