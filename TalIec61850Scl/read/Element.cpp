#include <TalIec61850Scl/read/Element.hpp>
#include <cstring>
#include <string>

namespace TalIec61850Scl::detail {

namespace {

/// Whether a name of XML is this one, and has no prefix.
bool isSame(char const* name, std::string_view wanted) noexcept {
    for (char const letter : wanted) {
        if (*name != letter) {
            return false;
        }
        ++name;
    }
    return *name == '\0';
}

/// A name of XML, with the prefix of its namespace; empty where it is too long.
struct QualifiedName {
    explicit QualifiedName(char const* name) noexcept : full(name) {
        for (; name[size] != '\0'; ++size) {
            if (size == kMostTagOctets) {
                size = local = 0;
                return;
            }
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

std::string_view startOf(char const* text, std::size_t most) noexcept {
    // One octet more shows whether a character goes on.
    return startOf(std::string_view(text, ::strnlen(text, most + 1)), most);
}

std::string_view Element::name() const noexcept {
    QualifiedName const name(node_.name());
    return {name.full + name.local, name.size - name.local};
}

bool Element::is(std::string_view wanted) const noexcept {
    return isSame(node_.name(), wanted) || name() == wanted;
}

int Element::find(std::string_view const* wanted, char const** values,
                  std::size_t count) const noexcept {
    std::size_t left = count;
    bool hasPrefixes = false;
    int looks = 0;
    pugi::xml_attribute each = node_.first_attribute();
    for (; each && left > 0 && looks < kMostAttributes; each = each.next_attribute(), ++looks) {
        char const* const name = each.name();
        std::size_t i = 0;
        while (i < count && !isSame(name, wanted[i])) {
            ++i;
        }
        if (i == count) {
            hasPrefixes = hasPrefixes || QualifiedName(name).local > 0;
        } else if (values[i] == nullptr) {
            values[i] = each.value();
            --left;
        }
    }
    // Attributes with a prefix count where there is none without.
    each = hasPrefixes ? node_.first_attribute() : pugi::xml_attribute();
    int again = 0;
    for (; each && left > 0 && again < kMostAttributes; each = each.next_attribute(), ++again) {
        QualifiedName const name(each.name());
        for (std::size_t i = 0; i < count && name.local > 0 && name.isOfDescription(); ++i) {
            if (values[i] == nullptr && name.isLocal(wanted[i])) {
                values[i] = each.value();
                --left;
                break;
            }
        }
    }
    return looks + again;
}

std::optional<std::string_view> Element::attribute(std::string_view wanted) const noexcept {
    char const* value = nullptr;
    find(&wanted, &value, 1);
    return value == nullptr ? std::nullopt : std::optional(startOf(value, kMostValueOctets));
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
    pugi::xml_node each = node_.first_child();
    for (int left = kMostBefore; each && left > 0; each = each.next_sibling(), --left) {
        if (each.type() == pugi::node_pcdata || each.type() == pugi::node_cdata) {
            return startOf(trimmed(startOf(each.value(), kMostValueOctets)), kMostTextOctets);
        }
    }
    return {};
}

std::string_view Element::configuredValue() const noexcept {
    Element each = firstChild();
    for (int left = kMostBefore; each && left > 0; each = each.next(), --left) {
        if (each.is("Val")) {
            return each.content();
        }
    }
    return {};
}

Element Element::child(std::string_view wanted) const noexcept { return *children(wanted).begin(); }

Children Element::children(std::string_view wanted) const noexcept {
    return {firstChild(), wanted};
}

}  // namespace TalIec61850Scl::detail
