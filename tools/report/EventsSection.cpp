#include "tools/report/EventsSection.hpp"

#include "tools/report/RetransmissionCurve.hpp"
#include "tools/report/Section.hpp"

namespace TalIec61850Tools {

EventsSection::EventsSection(std::size_t mostOctets)
    : table_(eventRowLayout(Format::table),
             {.id = "events",
              .mostRows = kMostSectionRows,
              .mostOctets = mostOctets,
              .link = [](EventRow const& row) { return linkToMoment(row.event->arrival, 0); },
              .wide = {"CHANGES"},
              .drawnHeading = "RETRANSMISSIONS",
              .draw = [](EventRow const& row) { return retransmissionCurve(*row.event); }}) {}

void EventsSection::add(EventRow const& row) {
    constexpr std::size_t kFirst = 2;
    streams_.insert(row.event->stream);
    inShort_.streams = streams_.size();
    ++inShort_.count;
    if (inShort_.first.size() < kFirst) {
        inShort_.first.push_back(*row.event);
    }
    static_cast<void>(table_.add(row));
}

std::string EventsSection::finish() const {
    return sectionMarkup(
        table_, {.absent = "No GOOSE state changed.", .noun = "event", .command = "events"});
}

}  // namespace TalIec61850Tools
