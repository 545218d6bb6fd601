#include "tools/report/HtmlText.hpp"

#include <algorithm>

#include "tools/output/DumpJson.hpp"

namespace TalIec61850Tools {

namespace {

/// What `<` is in a script element.
constexpr std::string_view kLessThan = "\\u003c";

}  // namespace

void appendHtml(std::string& page, std::string_view text) {
    for (char const c : text) {
        switch (c) {
            case '&':
                page += "&amp;";
                break;
            case '<':
                page += "&lt;";
                break;
            case '>':
                page += "&gt;";
                break;
            case '"':
                page += "&quot;";
                break;
            case '\'':
                page += "&#39;";
                break;
            default:
                page += c;
        }
    }
}

std::string toHtml(std::string_view text) {
    std::string page;
    appendHtml(page, text);
    return page;
}

std::string toScriptData(std::string_view json) {
    std::string data;
    data.reserve(json.size());
    for (char const c : json) {
        if (c == '<') {
            data += kLessThan;  // it is in texts alone
        } else {
            data += c;
        }
    }
    return data;
}

std::size_t scriptSize(nlohmann::ordered_json const& json) {
    std::string const text = dumpJson(json);
    auto const signs = static_cast<std::size_t>(std::count(text.begin(), text.end(), '<'));
    return text.size() + signs * (kLessThan.size() - 1);
}

}  // namespace TalIec61850Tools
