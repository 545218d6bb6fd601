#include <TalIec61850Scl/read/NamedChildren.hpp>
#include <array>

namespace TalIec61850Scl::detail {

namespace {

/// Attributes of children that are compared before an index is made: those of some 24 children,
/// each of which takes one more.
constexpr int kComparedAttributesOfChildren = 72;

constexpr std::array<std::string_view, 1> kNameAlone{"name"};
constexpr std::array<std::string_view, 2> kNameAndIndex{"name", "ix"};

bool isInstance(Element child) {
    std::string_view const name = child.name();
    return name == "DAI" || name == "SDI" || name == "DOI";
}

std::string keyOfChild(std::string_view first, std::string_view second) {
    std::string key;
    key.reserve(first.size() + 1 + second.size());
    return key.append(first).append(1, '\n').append(second);
}

}  // namespace

Element NamedChildren::find(Element parent, std::string_view element, std::string_view name) {
    int left = kComparedAttributesOfChildren;
    for (Element each = parent.firstChild(); each && left > 0; each = each.next(), --left) {
        if (!each.is(element)) {
            continue;
        }
        auto const attributes = each.attributes(kNameAlone);
        if (attributes.name(0) == name) {
            return each;
        }
        left -= attributes.looks();
    }
    if (left > 0) {
        return {};
    }
    auto const [indexed, isNew] = named_.try_emplace(parent.identity());
    Index& index = indexed->second;
    if (isNew) {
        for (Element each = parent.firstChild(); each; each = each.next()) {
            if (auto const named = each.nameIn("name"); !named.empty()) {
                index.try_emplace(keyOfChild(each.name(), named), each);
            }
        }
    }
    auto const found = index.find(keyOfChild(element, name));
    return found == index.end() ? Element{} : found->second;
}

Element NamedChildren::findInstance(Element parent, std::string_view name, std::string_view index) {
    int left = kComparedAttributesOfChildren;
    for (Element each = parent.firstChild(); each && left > 0; each = each.next(), --left) {
        auto const attributes = each.attributes(kNameAndIndex);
        if (attributes.name(0) == name && attributes.name(1) == index && isInstance(each)) {
            return each;
        }
        left -= attributes.looks();
    }
    if (left > 0) {
        return {};
    }
    auto const [indexed, isNew] = instances_.try_emplace(parent.identity());
    Index& instances = indexed->second;
    if (isNew) {
        for (Element each = parent.firstChild(); each; each = each.next()) {
            if (isInstance(each)) {
                auto const attributes = each.attributes(kNameAndIndex);
                instances.try_emplace(keyOfChild(attributes.name(0), attributes.name(1)), each);
            }
        }
    }
    auto const found = instances.find(keyOfChild(name, index));
    return found == instances.end() ? Element{} : found->second;
}

}  // namespace TalIec61850Scl::detail
