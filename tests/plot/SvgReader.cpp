#include "plot/SvgReader.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace TalTest {

namespace {

/// Goes over all elements.
template <typename Take>
void visit(pugi::xml_node node, Take const& take) {
    for (pugi::xml_node const child : node.children()) {
        take(child);
        visit(child, take);
    }
}

/// Expects UTF-8 of characters that XML 1.0 has, which the reader of XML does not look at.
void expectXmlCharacters(std::string_view text) {
    struct Kind {
        unsigned char first;
        unsigned char last;
        std::size_t more;
        char32_t least;
    };
    constexpr std::array<Kind, 4> kKinds = {{{0x00, 0x7F, 0, 0x20},
                                             {0xC0, 0xDF, 1, 0x80},
                                             {0xE0, 0xEF, 2, 0x800},
                                             {0xF0, 0xF7, 3, 0x10000}}};
    for (std::size_t at = 0; at < text.size();) {
        auto const first = static_cast<unsigned char>(text[at]);
        auto const* const kind = std::find_if(
            kKinds.begin(), kKinds.end(),
            [first](Kind const& each) { return first >= each.first && first <= each.last; });
        ASSERT_NE(kind, kKinds.end()) << "octet " << at;
        char32_t code = kind->more == 0 ? first : first & (0x3FU >> kind->more);
        for (std::size_t i = 1; i <= kind->more; ++i) {
            auto const octet = at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U;
            ASSERT_EQ(octet & 0xC0U, 0x80U) << "octet " << at;
            code = code * 64 + (octet & 0x3FU);
        }
        ASSERT_TRUE(code == '\n' || code >= kind->least) << "octet " << at;
        bool const isNone = (code >= 0xD800 && code < 0xE000) || code == 0xFFFE || code == 0xFFFF;
        ASSERT_FALSE(isNone || code > 0x10FFFF) << "octet " << at;
        at += kind->more + 1;
    }
}

/// What none of the pictures may have: scripts, and what an attribute loads.
void expectNoRequest(pugi::xml_node root) {
    visit(root, [](pugi::xml_node node) {
        std::string_view const name = node.name();
        for (char const* const element :
             {"script", "image", "use", "style", "foreignObject", "a"}) {
            EXPECT_NE(name, element);
        }
        for (pugi::xml_attribute const attribute : node.attributes()) {
            std::string_view const value = attribute.value();
            EXPECT_EQ(value.find("url("), std::string_view::npos);
            EXPECT_FALSE(std::string_view(attribute.name()).starts_with("on"));
            EXPECT_NE(std::string_view(attribute.name()), "href");
            EXPECT_NE(std::string_view(attribute.name()), "xlink:href");
        }
    });
}

}  // namespace

std::vector<std::vector<Point>> pointsOf(std::string_view pathData) {
    std::vector<std::vector<Point>> parts;
    std::string const data(pathData);
    char const* at = data.c_str();
    auto const number = [&at] {
        char* end = nullptr;
        double const value = std::strtod(at, &end);
        EXPECT_NE(end, at);
        at = end;
        return value;
    };
    while (*at != '\0') {
        char const step = *at++;
        if (step == 'V') {
            Point const last = parts.back().back();
            parts.back().push_back({last.x, number()});
            continue;
        }
        if (step != 'M' && step != 'L') {
            ADD_FAILURE() << "no step of a path: " << step;
            return parts;
        }
        if (step == 'M') {
            parts.emplace_back();
        }
        double const x = number();
        parts.back().push_back({x, number()});
    }
    return parts;
}

SvgReader::SvgReader(std::string text) : text_(std::move(text)) {
    auto const result = document_.load_buffer(text_.data(), text_.size());
    EXPECT_TRUE(result) << result.description();
    EXPECT_STREQ(root().name(), "svg");
    EXPECT_STREQ(root().attribute("xmlns").value(), "http://www.w3.org/2000/svg");
    EXPECT_TRUE(text_.ends_with("</svg>\n"));
    expectXmlCharacters(text_);
    expectNoRequest(root());
}

std::vector<pugi::xml_node> SvgReader::ofClass(std::string_view kind) const {
    std::vector<pugi::xml_node> nodes;
    visit(root(), [&](pugi::xml_node node) {
        if (node.attribute("class").value() == kind) {
            nodes.push_back(node);
        }
    });
    return nodes;
}

std::vector<Box> SvgReader::boxes(std::string_view kind) const {
    std::vector<Box> boxes;
    for (pugi::xml_node const node : ofClass(kind)) {
        double const left = node.attribute("x").as_double();
        double const top = node.attribute("y").as_double();
        boxes.push_back({.left = left,
                         .right = left + node.attribute("width").as_double(),
                         .top = top,
                         .bottom = top + node.attribute("height").as_double()});
    }
    return boxes;
}

std::vector<std::string> SvgReader::texts() const {
    std::vector<std::string> texts;
    visit(root(), [&](pugi::xml_node node) {
        if (std::string_view(node.name()) == "text") {
            texts.emplace_back(node.child_value());
        }
    });
    return texts;
}

bool SvgReader::shows(std::string_view part) const {
    for (std::string const& text : texts()) {
        if (text.find(part) != std::string::npos) {
            return true;
        }
    }
    return false;
}

pugi::xml_node SvgReader::textNode(std::string_view text) const {
    pugi::xml_node found;
    visit(root(), [&](pugi::xml_node node) {
        if (!found && std::string_view(node.name()) == "text" && node.child_value() == text) {
            found = node;
        }
    });
    return found;
}

PixelScale SvgReader::seconds() const {
    // 10:00:00.250 is in the middle of its tick, the day is not.
    constexpr std::size_t kBeforeSeconds = 6;
    std::vector<pugi::xml_node> labels;
    for (pugi::xml_node const group : ofClass("time")) {
        for (pugi::xml_node const node : group.children("text")) {
            if (std::string_view(node.attribute("text-anchor").value()) == "middle") {
                labels.push_back(node);
            }
        }
    }
    if (labels.size() < 2) {
        ADD_FAILURE() << "there are no ticks";
        return {0, 0, 1, 1};
    }
    auto const at = [&](pugi::xml_node node) {
        return std::strtod(node.child_value() + kBeforeSeconds, nullptr);
    };
    // The last one may be moved away from the border.
    pugi::xml_node const last = labels[labels.size() > 2 ? labels.size() - 2 : 1];
    return {at(labels[0]), labels[0].attribute("x").as_double(), at(last),
            last.attribute("x").as_double()};
}

PixelScale SvgReader::values(std::string const& low, std::string const& high) const {
    // The base line of a label is below the middle of its letters.
    constexpr double kBaseShift = 4;
    auto const pixel = [&](std::string const& text) {
        pugi::xml_node const node = textNode(text);
        EXPECT_TRUE(node) << "no label " << text;
        return node.attribute("y").as_double() - kBaseShift;
    };
    return {std::strtod(low.c_str(), nullptr), pixel(low), std::strtod(high.c_str(), nullptr),
            pixel(high)};
}

std::vector<std::vector<std::vector<Point>>> SvgReader::paths(std::string_view kind) const {
    std::vector<std::vector<std::vector<Point>>> paths;
    for (pugi::xml_node const node : ofClass(kind)) {
        paths.push_back(pointsOf(node.attribute("d").value()));
    }
    return paths;
}

}  // namespace TalTest
