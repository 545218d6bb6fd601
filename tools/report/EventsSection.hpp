#pragma once

#include <cstddef>
#include <set>
#include <string>

#include "tools/render/EventRow.hpp"
#include "tools/report/HtmlTable.hpp"
#include "tools/report/ReportHead.hpp"

namespace TalIec61850Tools {

/// The state changes of a page: a table, with a curve of retransmissions for each.
class EventsSection {
public:
    /// @param mostOctets  of the table
    explicit EventsSection(std::size_t mostOctets);

    /// Adds an event; in the order of time.
    void add(EventRow const& row);

    /// How many there are, and the first two.
    [[nodiscard]] EventsInShort const& inShort() const { return inShort_; }
    /// The section, with its table "events".
    [[nodiscard]] std::string finish() const;

private:
    HtmlTable<EventRow> table_;
    EventsInShort inShort_;
    std::set<std::size_t> streams_;
};

}  // namespace TalIec61850Tools
