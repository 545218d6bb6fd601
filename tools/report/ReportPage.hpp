#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/output/TextSink.hpp"

namespace TalIec61850Tools {

/// All that differs from page to page. Markup is ready, texts are not escaped for a page yet.
struct ReportPage {
    /// Texts.
    std::string title;
    std::vector<std::string> head;
    /// What is not there to be drawn, a sentence each.
    std::vector<std::string> absent;
    std::vector<std::string> absentArrival;
    /// Markup.
    std::string streams;
    std::string findings;
    std::string events;
    std::string redundancy;
    /// What the script reads: base, from, to, steps, streams, goose, marks.
    nlohmann::ordered_json report;
    /// Values of all streams: see NumberPacker.
    std::string octets;
};

/// Writes a page that needs no other file.
void writePage(ReportPage const& page, TextSink const& sink);

}  // namespace TalIec61850Tools
