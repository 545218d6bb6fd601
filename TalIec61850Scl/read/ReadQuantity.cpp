#include <TalIec61850Scl/read/ReadNumber.hpp>
#include <TalIec61850Scl/read/ReadQuantity.hpp>
#include <TalIec61850Scl/read/UnitNames.hpp>
#include <string_view>

namespace TalIec61850Scl::detail {

namespace {

/// One attribute of a data object that is a Struct, such as units.
class ConfiguredStruct {
public:
    ConfiguredStruct(TypeTable& types, NamedChildren& children, TypeNumber type, Element instance,
                     std::string_view name)
        : types_(types),
          children_(children),
          part_(types.part(type, name)),
          instance_(children.findInstance(instance, name, "")) {}

    [[nodiscard]] bool isThere() const { return part_ != nullptr || instance_; }

    /// The value of a part of it; empty where there is none.
    [[nodiscard]] std::string_view value(std::string_view name) const {
        TypePart const* const part =
            part_ != nullptr && part_->type ? types_.part(*part_->type, name) : nullptr;
        std::string_view text = children_.findInstance(instance_, name, "").configuredValue();
        if (text.empty() && part != nullptr) {
            text = part->element.configuredValue();
        }
        if (part != nullptr && part->basicType == BasicType::enumerated && readNumber<int>(text)) {
            if (auto const named = types_.enumText(part->element.nameIn("type"), text);
                !named.empty()) {
                return named;
            }
        }
        return text;
    }

private:
    TypeTable& types_;
    NamedChildren& children_;
    TypePart const* part_;
    Element instance_;
};

}  // namespace

Quantity readQuantity(TypeTable& types, NamedChildren& children, TypeNumber type, Element instance,
                      QuantityPart part) {
    bool const isAngle = part == QuantityPart::angle;
    auto const configured = [&](std::string_view name) {
        return ConfiguredStruct(types, children, type, instance, name);
    };
    ConfiguredStruct const units = configured(isAngle ? "angUnits" : "units");
    Quantity quantity{.unit = unitText(units.value("SIUnit"), units.value("multiplier")),
                      .scale = std::nullopt};
    ConfiguredStruct const own = configured(isAngle ? "angSVC" : "magSVC");
    ConfiguredStruct const scaling = own.isThere() || isAngle ? own : configured("sVC");
    if (auto const factor = readDecimal(scaling.value("scaleFactor"))) {
        quantity.scale = MemberScale{.factor = *factor,
                                     .offset = readDecimal(scaling.value("offset")).value_or(0)};
    }
    return quantity;
}

}  // namespace TalIec61850Scl::detail
