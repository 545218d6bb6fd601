#pragma once

// Internal: an element of a description, known by its local name.

#include <array>
#include <cstddef>
#include <optional>
#include <pugixml.hpp>
#include <string_view>

namespace TalIec61850Scl::detail {

/// Octets of a name that are read; names of IEC 61850 have at most 129. So the size of what is
/// read stays in proportion to the description, however often one name is part of others.
inline constexpr std::size_t kMostNameOctets = 255;
/// Octets of a text for people that are read.
inline constexpr std::size_t kMostTextOctets = 1023;

// What one look at an element takes is bounded, since types and instances are looked at as often as
// data sets lead to them.

/// Attributes of an element that are looked at; an ExtRef has some 20.
inline constexpr int kMostAttributes = 64;
/// Elements inside another that are looked at for its text or its value.
inline constexpr int kMostBefore = 64;
/// Octets of a name of XML, with its prefix. Nothing that is read has a longer one.
inline constexpr std::size_t kMostTagOctets = 127;
/// Octets of a value of an attribute, and of a text, that are looked at, with the blanks around it.
inline constexpr std::size_t kMostValueOctets = 4095;

class Children;

/// The start of a text, at most so many octets, and no character of UTF-8 cut in two.
[[nodiscard]] std::string_view startOf(std::string_view text, std::size_t most) noexcept;
/// Likewise, of a text that ends with an octet 0; no more of it is looked at.
[[nodiscard]] std::string_view startOf(char const* text, std::size_t most) noexcept;

/// Without the blanks around it.
[[nodiscard]] std::string_view trimmed(std::string_view text) noexcept;

/// Attributes of one element, by their number among those that were wanted.
template <std::size_t count>
class Attributes {
public:
    [[nodiscard]] bool has(std::size_t number) const noexcept { return values_[number] != nullptr; }
    /// The start of one that names something, at most kMostNameOctets; empty where there is none.
    [[nodiscard]] std::string_view name(std::size_t number) const noexcept {
        return has(number) ? startOf(values_[number], kMostNameOctets) : std::string_view();
    }
    /// The start of one for people, at most kMostTextOctets; empty where there is none.
    [[nodiscard]] std::string_view text(std::size_t number) const noexcept {
        return has(number)
                   ? startOf(trimmed(startOf(values_[number], kMostValueOctets)), kMostTextOctets)
                   : std::string_view();
    }
    /// How many attributes were looked at.
    [[nodiscard]] int looks() const noexcept { return looks_; }

private:
    friend class Element;

    std::array<char const*, count> values_{};
    int looks_ = 0;
};

/// An element, or none. Cheap to copy; what it gives leads into its document.
class Element {
public:
    Element() = default;
    explicit Element(pugi::xml_node node) noexcept : node_(node) {}

    [[nodiscard]] explicit operator bool() const noexcept { return !node_.empty(); }
    friend bool operator==(Element const&, Element const&) = default;

    /// Without its namespace's prefix; empty where it is longer than kMostTagOctets.
    [[nodiscard]] std::string_view name() const noexcept;
    /// Whether it has this name, whatever its prefix is.
    [[nodiscard]] bool is(std::string_view wanted) const noexcept;

    /// Several attributes at once, which takes little more than one of them.
    template <std::size_t count>
    [[nodiscard]] Attributes<count> attributes(
        std::array<std::string_view, count> const& wanted) const noexcept {
        Attributes<count> attributes;
        attributes.looks_ = find(wanted.data(), attributes.values_.data(), count);
        return attributes;
    }

    /// The value of an attribute, at most kMostValueOctets; not set where there is none among the
    /// first kMostAttributes. One without a prefix comes first; those of xml, xmlns and xsi are
    /// none of a description.
    [[nodiscard]] std::optional<std::string_view> attribute(std::string_view wanted) const noexcept;
    /// The start of an attribute that names something, at most kMostNameOctets; empty where there
    /// is none.
    [[nodiscard]] std::string_view nameIn(std::string_view wanted) const noexcept;
    /// The start of an attribute for people, at most kMostTextOctets; empty where there is none.
    [[nodiscard]] std::string_view textIn(std::string_view wanted) const noexcept;
    /// Whether an attribute is true; not set where there is none.
    [[nodiscard]] std::optional<bool> flagIn(std::string_view wanted) const noexcept;

    /// Its text without the blanks around it, at most kMostTextOctets. None where it comes after
    /// kMostBefore elements.
    [[nodiscard]] std::string_view content() const noexcept;
    /// The content of the first Val inside it, among as many elements.
    [[nodiscard]] std::string_view configuredValue() const noexcept;

    /// The first element inside it; none where there is none. Text between elements counts as one
    /// without a name.
    [[nodiscard]] Element firstChild() const noexcept { return Element(node_.first_child()); }
    /// The next one inside the same element.
    [[nodiscard]] Element next() const noexcept { return Element(node_.next_sibling()); }
    /// The first one inside it of a name.
    [[nodiscard]] Element child(std::string_view wanted) const noexcept;
    /// All of a name inside it.
    [[nodiscard]] Children children(std::string_view wanted) const noexcept;

    /// Octets in the document before its name; -1 where that is not known.
    [[nodiscard]] std::ptrdiff_t offset() const { return node_.offset_debug(); }
    /// Tells elements of one document apart.
    [[nodiscard]] std::size_t identity() const noexcept { return node_.hash_value(); }

private:
    /// Null for those that are not there.
    /// @return how many attributes were looked at
    int find(std::string_view const* wanted, char const** values, std::size_t count) const noexcept;

    pugi::xml_node node_;
};

/// The elements of one name inside another, for range-based loops.
class Children {
public:
    Children(Element first, std::string_view wanted) noexcept : first_(first), wanted_(wanted) {}

    class Iterator {
    public:
        Iterator(Element element, std::string_view wanted) noexcept
            : element_(element), wanted_(wanted) {
            skip();
        }
        [[nodiscard]] Element operator*() const noexcept { return element_; }
        Iterator& operator++() noexcept {
            element_ = element_.next();
            skip();
            return *this;
        }
        [[nodiscard]] bool operator!=(Iterator const& other) const noexcept {
            return !(element_ == other.element_);
        }

    private:
        void skip() noexcept {
            while (element_ && !element_.is(wanted_)) {
                element_ = element_.next();
            }
        }

        Element element_;
        std::string_view wanted_;
    };

    [[nodiscard]] Iterator begin() const noexcept { return {first_, wanted_}; }
    [[nodiscard]] Iterator end() const noexcept { return {Element{}, wanted_}; }

private:
    Element first_;
    std::string_view wanted_;
};

}  // namespace TalIec61850Scl::detail
