#include <TalIec61850Scl/read/ReadNumber.hpp>
#include <TalIec61850Scl/read/TypeTable.hpp>
#include <array>
#include <utility>

namespace TalIec61850Scl::detail {

namespace {

/// Parts that are compared one by one; of a type with more, an index is kept.
constexpr std::size_t kComparedParts = 16;

/// Values of an EnumType that are read; units have some 90.
constexpr std::size_t kMostEnumValues = 256;

/// Attributes that are looked at for the one that has the number of elements of an array.
constexpr int kComparedAttributes = 64;

/// A structure that is defined outside the description: any value may be of it.
constexpr std::string_view kPhysicalAddress = "PhyComAddr";

std::string classAndId(std::string_view lnClass, std::string_view id) {
    return std::string(lnClass).append(1, '\n').append(id);
}

}  // namespace

TypeTable::TypeTable(Document const& document, DiagnosticList& diagnostics)
    : document_(document), diagnostics_(diagnostics) {
    for (Element const templates : document.root().children("DataTypeTemplates")) {
        for (Element each = templates.firstChild(); each; each = each.next()) {
            index(each);
        }
    }
}

void TypeTable::index(Element element) {
    std::string_view const kind = element.name();
    bool const isEnum = kind == "EnumType";
    bool const isNode = kind == "LNodeType";
    bool const isObject = kind == "DOType";
    if (!isEnum && !isNode && !isObject && kind != "DAType") {
        return;
    }
    auto const id = element.nameIn("id");
    if (id.empty()) {
        miss(element, "id");
        return;
    }
    bool isFirst = false;
    if (isEnum) {
        isFirst = enumTypes_.try_emplace(id, element).second;
    } else {
        auto const number = static_cast<TypeNumber>(types_.size());
        types_.emplace_back(element, isNode     ? TypeKind::logicalNode
                                     : isObject ? TypeKind::dataObject
                                                : TypeKind::dataAttribute);
        isFirst = isNode
                      ? indexNodeType(element, id, number)
                      : (isObject ? objectTypes_ : attributeTypes_).try_emplace(id, number).second;
    }
    if (!isFirst && diagnostics_.takes(DiagnosticCode::duplicateType)) {
        diagnostics_.add(DiagnosticCode::duplicateType, document_.placeOf(element), id);
    }
}

bool TypeTable::indexNodeType(Element element, std::string_view id, TypeNumber number) {
    auto const [first, isNew] = nodeTypes_.try_emplace(id, number);
    if (isNew) {
        return true;
    }
    auto const lnClass = element.nameIn("lnClass");
    return types_[first->second].element.nameIn("lnClass") != lnClass &&
           otherNodeTypes_.try_emplace(classAndId(lnClass, id), number).second;
}

void TypeTable::miss(Element element, std::string_view attribute) {
    if (diagnostics_.takes(DiagnosticCode::missingAttribute)) {
        diagnostics_.add(DiagnosticCode::missingAttribute, document_.placeOf(element), attribute);
    }
}

std::optional<TypeNumber> TypeTable::logicalNodeType(std::string_view id,
                                                     std::string_view lnClass) const {
    auto const found = nodeTypes_.find(id);
    if (found == nodeTypes_.end()) {
        return std::nullopt;
    }
    if (!otherNodeTypes_.empty() && types_[found->second].element.nameIn("lnClass") != lnClass) {
        auto const other = otherNodeTypes_.find(classAndId(lnClass, id));
        if (other != otherNodeTypes_.end()) {
            return other->second;
        }
    }
    return found->second;
}

std::vector<TypePart> const& TypeTable::parts(TypeNumber type) {
    Type& of = types_[type];
    if (!of.isRead) {
        read(of);
    }
    return of.parts;
}

TypePart const* TypeTable::part(TypeNumber type, std::string_view name) {
    std::vector<TypePart> const& all = parts(type);
    if (all.size() > kComparedParts) {
        auto const& byName = types_[type].byName;
        auto const found = byName.find(name);
        return found == byName.end() ? nullptr : &all[found->second];
    }
    for (TypePart const& each : all) {
        if (each.name == name) {
            return &each;
        }
    }
    return nullptr;
}

std::string_view TypeTable::enumText(std::string_view id, std::string_view ordinal) {
    auto const found = enumTypes_.find(id);
    if (found == enumTypes_.end()) {
        return {};
    }
    EnumType& type = found->second;
    if (!type.isRead) {
        type.isRead = true;
        for (Element const value : type.element.children("EnumVal")) {
            if (type.values.size() == kMostEnumValues) {
                break;
            }
            type.values.emplace_back(trimmed(value.nameIn("ord")), value.content());
        }
    }
    for (auto const& [number, text] : type.values) {
        if (number == ordinal) {
            return text;
        }
    }
    return {};
}

void TypeTable::read(Type& type) {
    type.isRead = true;
    for (Element each = type.element.firstChild(); each; each = each.next()) {
        std::string_view const name = each.name();
        bool const isPart = type.kind == TypeKind::logicalNode  ? name == "DO"
                            : type.kind == TypeKind::dataObject ? name == "SDO" || name == "DA"
                                                                : name == "BDA";
        if (isPart) {
            type.parts.push_back(readPart(type, each));
        }
    }
    if (type.parts.size() > kComparedParts) {
        for (std::size_t i = 0; i < type.parts.size(); ++i) {
            type.byName.try_emplace(type.parts[i].name, i);
        }
    }
}

TypePart TypeTable::readPart(Type const& type, Element element) {
    enum : std::size_t { kName, kFc, kBType, kType, kCount, kDesc };
    auto const attributes = element.attributes(
        std::array<std::string_view, 6>{"name", "fc", "bType", "type", "count", "desc"});
    TypePart part;
    part.element = element;
    part.name = attributes.name(kName);
    part.desc = attributes.text(kDesc);
    std::string_view const kind = element.name();
    part.isObject = kind != "DA" && kind != "BDA";
    part.constraint = kAnyConstraint;
    part.bType = attributes.name(kBType);
    if (part.name.empty()) {
        miss(element, "name");
    }
    if (!part.isObject) {
        readAttribute(part, attributes.name(kFc), kind == "DA");
    }
    if (part.isCompound()) {
        if (attributes.has(kType)) {
            part.type = referredType(part, attributes.name(kType));
        } else {
            miss(element, "type");
        }
    }
    if (attributes.has(kCount)) {
        part.count = countOf(type, element, attributes.name(kCount));
    }
    return part;
}

void TypeTable::readAttribute(TypePart& part, std::string_view fc, bool isOfObject) {
    part.basicType = basicTypeOf(part.bType);
    if (part.bType.empty()) {
        miss(part.element, "bType");
    } else if (part.basicType == BasicType::unknown && part.bType != kPhysicalAddress) {
        diagnostics_.addOnce(DiagnosticCode::unknownBType, document_.placeOf(part.element),
                             part.bType);
    }
    if (isOfObject) {
        part.constraint = constraintOf(fc);
        if (!part.constraint) {
            miss(part.element, "fc");
        }
    }
}

std::optional<TypeNumber> TypeTable::referredType(TypePart const& part, std::string_view id) {
    Numbers const& numbers = part.isObject ? objectTypes_ : attributeTypes_;
    auto const found = numbers.find(id);
    if (found == numbers.end()) {
        diagnostics_.addOnce(
            part.isObject ? DiagnosticCode::missingDOType : DiagnosticCode::missingDAType,
            document_.placeOf(part.element), id);
        return std::nullopt;
    }
    return found->second;
}

std::optional<std::uint32_t> TypeTable::countOf(Type const& type, Element element,
                                                std::string_view text) {
    if (auto const number = readNumber<std::uint32_t>(text)) {
        // 0 is the default of the attribute: no array.
        return *number == 0 ? std::nullopt : number;
    }
    // Since edition 2 it may be the name of an attribute beside it that has the number.
    Element each = type.element.firstChild();
    for (int left = kComparedAttributes; each && left > 0; each = each.next(), --left) {
        if (each.nameIn("name") == trimmed(text)) {
            auto const number = readNumber<std::uint32_t>(each.configuredValue());
            if (number && *number > 0) {
                return number;
            }
            break;
        }
    }
    diagnostics_.add(DiagnosticCode::badNumber, document_.placeOf(element), text);
    return std::nullopt;
}

}  // namespace TalIec61850Scl::detail
