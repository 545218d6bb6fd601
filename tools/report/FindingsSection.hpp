#pragma once

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tools/names/StreamNames.hpp"
#include "tools/render/FindingLayout.hpp"
#include "tools/report/HtmlTable.hpp"
#include "tools/report/ReportHead.hpp"
#include "tools/report/SeverityRoom.hpp"

namespace TalIec61850Tools {

/// The findings of a page: a table, and marks on the time axis.
class FindingsSection {
public:
    /// What findings are told by; all of it must outlive the section.
    struct Words {
        TalIec61850Analysis::TrafficIndex const& index;
        FindingText& text;
        /// Names of the captures, by the numbers of the files.
        std::vector<std::string> const& files;
        StreamNames& names;
    };

    /// @param mostOctets  of the table, and of the marks
    FindingsSection(Words const& words, std::size_t mostOctets);

    /// Adds a finding; in the order of time.
    void add(TalIec61850Analysis::Finding const& finding);

    /// Chooses what has room, and is to be called once, after the last finding and before the rest.
    /// @return the section, with its table "findings"
    [[nodiscard]] std::string finish();

    /// How many there are, and the first of the worst.
    [[nodiscard]] FindingsInShort const& inShort() const { return inShort_; }
    /// For the script: of each, its time, its severity, the number of its row, 0 for none, and, of
    /// those that last, until when.
    /// @param origin  the instant that times are told from, in nanoseconds since 1970
    [[nodiscard]] nlohmann::ordered_json marks(std::int64_t origin) const;
    /// What has no mark, a sentence each.
    [[nodiscard]] std::vector<std::string> absent() const;
    /// What these take, about.
    [[nodiscard]] std::size_t octetsOfMarks() const;

private:
    /// A finding that may have a row, with its number among all, and what the row takes.
    struct Candidate {
        TalIec61850Analysis::Finding finding;
        std::size_t number = 0;
        std::size_t octets = 0;
    };
    struct Mark {
        std::int64_t time = 0;
        std::string_view severity;
        std::int64_t until = 0;
        /// Among all findings, from 1.
        std::size_t number = 0;
        /// 0 for none.
        std::size_t row = 0;
    };

    [[nodiscard]] FindingRow rowOf(TalIec61850Analysis::Finding const& finding) const;
    /// @return of each row, the number of its finding
    [[nodiscard]] std::vector<std::size_t> chooseRows();
    void chooseMarks(std::vector<std::size_t> const& rows);

    Words words_;
    HtmlTable<FindingRow> table_;
    FindingsInShort inShort_;
    std::size_t mostOctets_;
    std::size_t findings_ = 0;
    /// Findings with a time.
    std::uint64_t withTime_ = 0;
    PerSeverity<std::vector<Candidate>> mayHaveRow_;
    PerSeverity<std::vector<Mark>> mayHaveMark_;
    /// Those that are chosen.
    std::vector<Mark> marks_;
};

}  // namespace TalIec61850Tools
