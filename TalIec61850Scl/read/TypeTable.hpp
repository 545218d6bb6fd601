#pragma once

// Internal: the types of a description's DataTypeTemplates.

#include <TalIec61850Scl/model/BasicType.hpp>
#include <TalIec61850Scl/read/DiagnosticList.hpp>
#include <TalIec61850Scl/read/Document.hpp>
#include <TalIec61850Scl/read/FunctionalConstraint.hpp>
#include <TalIec61850Scl/read/NameHash.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace TalIec61850Scl::detail {

/// What a type is of.
enum class TypeKind : std::uint8_t {
    logicalNode,    ///< LNodeType, of DOs
    dataObject,     ///< DOType, of SDOs and DAs
    dataAttribute,  ///< DAType, of BDAs
};

/// A type by its number.
using TypeNumber = std::uint32_t;

/// One DO, SDO, DA or BDA.
struct TypePart {
    Element element;
    /// Its name; leads into the document.
    std::string_view name;
    /// Its text for people; likewise.
    std::string_view desc;
    /// DO or SDO.
    bool isObject = false;
    /// Of a DA; not set where it has none that there is. Of DO, SDO and BDA kAnyConstraint.
    std::optional<FunctionalConstraint> constraint;
    /// Of a DA or BDA, as the file writes it.
    std::string_view bType;
    BasicType basicType = BasicType::unknown;
    /// What it is made of: of an object, and of a Struct. Not set where that is not there.
    std::optional<TypeNumber> type;
    /// Values, of an array; else not set.
    std::optional<std::uint32_t> count;

    /// Whether it has parts of its own: all but a plain attribute.
    [[nodiscard]] bool isCompound() const noexcept {
        return isObject || basicType == BasicType::structure;
    }
};

/// The types of one file, by id. Their parts are read when they are first asked for.
class TypeTable {
public:
    /// @param document     has to outlive this object
    /// @param diagnostics  where to tell what is wrong, likewise
    TypeTable(Document const& document, DiagnosticList& diagnostics);

    /// The type of a logical node; not set where there is none.
    /// @param lnClass  which of several of that id
    [[nodiscard]] std::optional<TypeNumber> logicalNodeType(std::string_view id,
                                                            std::string_view lnClass) const;

    /// What a type consists of, in the order of the document.
    [[nodiscard]] std::vector<TypePart> const& parts(TypeNumber type);
    /// A part by its name; null where there is none.
    [[nodiscard]] TypePart const* part(TypeNumber type, std::string_view name);

    [[nodiscard]] Element element(TypeNumber type) const { return types_[type].element; }
    /// The text of an ordinal of an EnumType; empty where there is none.
    [[nodiscard]] std::string_view enumText(std::string_view id, std::string_view ordinal);

private:
    struct Type {
        Type(Element of, TypeKind made) : element(of), kind(made) {}

        Element element;
        TypeKind kind;
        bool isRead = false;
        std::vector<TypePart> parts;
        /// Where there are many; the first of each name.
        NameMap<std::string_view, std::size_t> byName;
    };

    struct EnumType {
        explicit EnumType(Element of) : element(of) {}

        Element element;
        bool isRead = false;
        /// Ordinals and texts.
        std::vector<std::pair<std::string_view, std::string_view>> values;
    };

    using Numbers = NameMap<std::string_view, TypeNumber>;

    void index(Element element);
    /// @return whether it is the first of its kind and id
    bool indexNodeType(Element element, std::string_view id, TypeNumber number);
    void read(Type& type);
    void readAttribute(TypePart& part, std::string_view fc, bool isOfObject);
    /// Tells that an attribute is missing.
    void miss(Element element, std::string_view attribute);
    [[nodiscard]] TypePart readPart(Type const& type, Element element);
    [[nodiscard]] std::optional<std::uint32_t> countOf(Type const& type, Element element,
                                                       std::string_view text);
    [[nodiscard]] std::optional<TypeNumber> referredType(TypePart const& part, std::string_view id);

    Document const& document_;
    DiagnosticList& diagnostics_;
    std::vector<Type> types_;
    Numbers objectTypes_;
    Numbers attributeTypes_;
    Numbers nodeTypes_;
    /// LNodeTypes whose id another one has, by class and id.
    NameMap<std::string, TypeNumber> otherNodeTypes_;
    NameMap<std::string_view, EnumType> enumTypes_;
};

}  // namespace TalIec61850Scl::detail
