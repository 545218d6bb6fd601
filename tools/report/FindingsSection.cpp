#include "tools/report/FindingsSection.hpp"

#include <fmt/format.h>

#include <TalIec61850Analysis/traffic/PacketColumns.hpp>
#include <algorithm>

#include "tools/report/Section.hpp"
#include "tools/selection/FindingNames.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::Finding;
using TalIec61850Analysis::kNoTime;

namespace {

constexpr std::size_t kMostMarks = 10'000;
constexpr std::size_t kOctetsOfMark = 50;

/// Findings as `check` writes them, with what `show` takes.
RowLayout<FindingRow> placedFindings() {
    RowLayout<FindingRow> layout = findingLayout();
    layout.columns.push_back(
        {{"FILE@POSITION", Align::left}, [](FindingRow const& row) -> Cell {
             auto const& place = row.finding->place;
             return place ? Cell(fmt::format("{}@{}", (*row.files)[place->file], place->fileOffset))
                          : Cell();
         }});
    return layout;
}

std::string linkTo(Finding const& finding) {
    bool const lasts = finding.until != kNoTime && finding.from != kNoTime;
    return linkToMoment(finding.from, lasts ? finding.until - finding.from : 0);
}

}  // namespace

FindingsSection::FindingsSection(Words const& words, std::size_t mostOctets)
    : words_(words),
      table_(placedFindings(),
             {.id = "findings",
              .mostRows = kMostSectionRows,
              .mostOctets = mostOctets,
              .link = [](FindingRow const& row) { return linkTo(*row.finding); },
              .kind = [](FindingRow const& row) { return toText(row.finding->severity()); },
              .wide = {"TEXT"}}),
      mostOctets_(mostOctets) {}

FindingRow FindingsSection::rowOf(Finding const& finding) const {
    return {.finding = &finding,
            .index = &words_.index,
            .words = &words_.text,
            .files = &words_.files,
            .names = &words_.names};
}

void FindingsSection::add(Finding const& finding) {
    inShort_.add(finding);
    ++findings_;
    std::size_t const place = placeOf(finding.severity());
    if (auto& rows = mayHaveRow_[place]; rows.size() < kMostSectionRows) {
        rows.push_back(
            {.finding = finding, .number = findings_, .octets = table_.sizeOf(rowOf(finding))});
    }
    if (finding.from == kNoTime) {
        return;
    }
    ++withTime_;
    if (auto& marks = mayHaveMark_[place]; marks.size() < kMostMarks) {
        marks.push_back({.time = finding.from,
                         .severity = toText(finding.severity()),
                         .until = finding.until == kNoTime ? finding.from : finding.until,
                         .number = findings_});
    }
}

std::vector<std::size_t> FindingsSection::chooseRows() {
    PerSeverity<std::vector<std::size_t>> sizes;
    for (std::size_t place = 0; place < sizes.size(); ++place) {
        for (Candidate const& each : mayHaveRow_[place]) {
            sizes[place].push_back(each.octets);
        }
    }
    auto const counts = shareOut(sizes, {.most = kMostSectionRows, .mostOctets = mostOctets_});
    std::vector<Candidate const*> chosen;
    for (std::size_t place = 0; place < sizes.size(); ++place) {
        for (std::size_t i = 0; i < counts[place]; ++i) {
            chosen.push_back(&mayHaveRow_[place][i]);
        }
    }
    std::sort(chosen.begin(), chosen.end(),
              [](auto const* a, auto const* b) { return a->number < b->number; });
    std::vector<std::size_t> numbers;
    for (Candidate const* const each : chosen) {
        table_.add(rowOf(each->finding));
        numbers.push_back(each->number);
    }
    table_.leaveOut(findings_ - chosen.size());
    return numbers;
}

void FindingsSection::chooseMarks(std::vector<std::size_t> const& rows) {
    PerSeverity<std::vector<std::size_t>> sizes;
    for (std::size_t place = 0; place < sizes.size(); ++place) {
        sizes[place].assign(mayHaveMark_[place].size(), kOctetsOfMark);
    }
    auto const counts = shareOut(sizes, {.most = kMostMarks, .mostOctets = mostOctets_});
    for (std::size_t place = 0; place < sizes.size(); ++place) {
        for (std::size_t i = 0; i < counts[place]; ++i) {
            marks_.push_back(mayHaveMark_[place][i]);
        }
    }
    std::sort(marks_.begin(), marks_.end(),
              [](Mark const& a, Mark const& b) { return a.number < b.number; });
    for (Mark& mark : marks_) {
        auto const row = std::lower_bound(rows.begin(), rows.end(), mark.number);
        if (row != rows.end() && *row == mark.number) {
            mark.row = static_cast<std::size_t>(row - rows.begin()) + 1;
        }
    }
}

std::string FindingsSection::finish() {
    chooseMarks(chooseRows());
    return sectionMarkup(table_,
                         {.absent = "Nothing was found.", .noun = "finding", .command = "check"});
}

nlohmann::ordered_json FindingsSection::marks(std::int64_t origin) const {
    auto json = nlohmann::ordered_json::array();
    for (Mark const& mark : marks_) {
        json.push_back({mark.time - origin, mark.severity, mark.row});
        if (mark.until > mark.time) {
            json.back().push_back(mark.until - origin);
        }
    }
    return json;
}

std::vector<std::string> FindingsSection::absent() const {
    if (marks_.size() == withTime_) {
        return {};
    }
    return {fmt::format("{} findings have marks, errors rather than notes; {} more have none.",
                        withCommas(marks_.size()), withCommas(withTime_ - marks_.size()))};
}

std::size_t FindingsSection::octetsOfMarks() const { return marks_.size() * kOctetsOfMark; }

}  // namespace TalIec61850Tools
