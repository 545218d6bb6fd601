#include <TalIec61850Scl/read/Element.hpp>
#include <string>

namespace TalIec61850Scl::detail {

namespace {

/// A name of XML, with the prefix of its namespace.
struct QualifiedName {
    explicit QualifiedName(char const* name) noexcept : full(name) {
        for (; name[size] != '\0'; ++size) {
            if (name[size] == ':') {
                local = size + 1;
            }
        }
    }

    [[nodiscard]] bool isLocal(std::string_view wanted) const noexcept {
        return size - local == wanted.size() &&
               std::char_traits<char>::compare(full + local, wanted.data(), wanted.size()) == 0;
    }
    /// Whether it may be an attribute of a description.
    [[nodiscard]] bool isOfDescription() const noexcept {
        std::string_view const prefix(full, local > 0 ? local - 1 : 0);
        return prefix != "xsi" && prefix != "xml" && prefix != "xmlns";
    }

    char const* full;
    std::size_t size = 0;
    /// Where the local name begins.
    std::size_t local = 0;
};

}  // namespace

std::string_view trimmed(std::string_view text) noexcept {
    constexpr std::string_view kBlanks = " \t\r\n";
    std::size_t const first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

std::string_view startOf(std::string_view text, std::size_t most) noexcept {
    if (text.size() <= most) {
        return text;
    }
    std::size_t end = most;
    auto const continues = [&] { return (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U; };
    while (end > 0 && most - end < 3 && continues()) {
        --end;
    }
    return text.substr(0, end);
}

std::string_view Element::name() const noexcept {
    QualifiedName const name(node_.name());
    return {name.full + name.local, name.size - name.local};
}

void Element::find(std::string_view const* wanted, char const** values,
                   std::size_t count) const noexcept {
    bool hasPrefixes = false;
    for (pugi::xml_attribute each = node_.first_attribute(); each; each = each.next_attribute()) {
        QualifiedName const name(each.name());
        hasPrefixes = hasPrefixes || name.local > 0;
        for (std::size_t i = 0; i < count && name.local == 0; ++i) {
            if (name.isLocal(wanted[i])) {
                values[i] = values[i] == nullptr ? each.value() : values[i];
                break;
            }
        }
    }
    if (!hasPrefixes) {
        return;
    }
    for (pugi::xml_attribute each = node_.first_attribute(); each; each = each.next_attribute()) {
        QualifiedName const name(each.name());
        for (std::size_t i = 0; i < count && name.local > 0; ++i) {
            if (name.isLocal(wanted[i]) && name.isOfDescription()) {
                values[i] = values[i] == nullptr ? each.value() : values[i];
                break;
            }
        }
    }
}

std::optional<std::string_view> Element::attribute(std::string_view wanted) const noexcept {
    char const* value = nullptr;
    find(&wanted, &value, 1);
    return value == nullptr ? std::nullopt : std::optional<std::string_view>(value);
}

std::string_view Element::nameIn(std::string_view wanted) const noexcept {
    return startOf(attribute(wanted).value_or(""), kMostNameOctets);
}

std::string_view Element::textIn(std::string_view wanted) const noexcept {
    return startOf(trimmed(attribute(wanted).value_or("")), kMostTextOctets);
}

std::optional<bool> Element::flagIn(std::string_view wanted) const noexcept {
    auto const text = attribute(wanted);
    if (!text) {
        return std::nullopt;
    }
    std::string_view const value = trimmed(*text);
    return value == "true" || value == "1";
}

std::string_view Element::content() const noexcept {
    return startOf(trimmed(node_.text().get()), kMostTextOctets);
}

Element Element::child(std::string_view wanted) const noexcept { return *children(wanted).begin(); }

Children Element::children(std::string_view wanted) const noexcept {
    return {firstChild(), wanted};
}

}  // namespace TalIec61850Scl::detail
