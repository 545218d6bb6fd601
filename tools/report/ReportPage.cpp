#include "tools/report/ReportPage.hpp"

#include <TalIec61850Parser/Version.hpp>
#include <functional>
#include <map>
#include <string_view>

#include "tools/output/DumpJson.hpp"
#include "tools/report/Base64.hpp"
#include "tools/report/HtmlText.hpp"
#include "tools/report/PageTemplate.hpp"
#include "tools/report/Section.hpp"

namespace TalIec61850Tools {

namespace {

std::string paragraphs(std::vector<std::string> const& texts) {
    std::string markup;
    for (std::string const& text : texts) {
        markup += absentMarkup(text);
    }
    return markup;
}

std::string listItems(std::vector<std::string> const& texts) {
    std::string markup;
    for (std::string const& text : texts) {
        markup += "<li>" + toHtml(text) + "</li>\n";
    }
    return markup;
}

}  // namespace

void writePage(ReportPage const& page, TextSink const& sink) {
    PageFiles const& files = pageFiles();
    std::map<std::string_view, std::function<std::string()>> const made = {
        {"version", [] { return std::string(TALIEC61850PARSER_VERSION); }},
        {"title", [&] { return toHtml(page.title); }},
        {"head", [&] { return listItems(page.head); }},
        {"absent", [&] { return paragraphs(page.absent); }},
        {"noArrival", [&] { return paragraphs(page.absentArrival); }},
        {"licence", [&] { return toHtml(files.chartLicence); }},
        {"report", [&] { return toScriptData(dumpJson(page.report)); }},
        {"samples", [&] { return toBase64(page.octets); }}};
    std::map<std::string_view, std::string_view> const ready = {
        {"style", files.style},           {"script", files.script},
        {"chartStyle", files.chartStyle}, {"chartScript", files.chartScript},
        {"streams", page.streams},        {"findings", page.findings},
        {"events", page.events},          {"redundancy", page.redundancy}};
    fillTemplate(
        files.page,
        [&](std::string_view place) {
            if (auto const text = ready.find(place); text != ready.end()) {
                sink(text->second);
            } else {
                sink(made.at(place)());
            }
        },
        sink);
}

}  // namespace TalIec61850Tools
