#include <TalIec61850Scl/read/ReadAddress.hpp>
#include <TalIec61850Scl/read/ReadNumber.hpp>
#include <cmath>
#include <utility>

namespace TalIec61850Scl::detail {

namespace {

template <typename Number>
std::optional<Number> readHex(std::string_view text, Number most) {
    auto const number = text.starts_with('-') ? std::nullopt : readNumber<Number>(text, 16);
    return number && *number <= most ? number : std::nullopt;
}

}  // namespace

std::optional<TalIec61850Analysis::MacAddress> readMac(std::string_view text) {
    std::string_view const address = trimmed(text);
    TalIec61850Analysis::MacAddress mac{};
    bool const isSeparated = address.size() == 17;
    if (!isSeparated && address.size() != 12) {
        return std::nullopt;
    }
    std::size_t at = 0;
    for (std::size_t i = 0; i < mac.size(); ++i) {
        if (isSeparated && i > 0) {
            if (address[at] != '-' && address[at] != ':') {
                return std::nullopt;
            }
            ++at;
        }
        std::string_view const digits = address.substr(at, 2);
        auto const [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), mac[i], 16);
        if (error != std::errc{} || end != digits.data() + digits.size()) {
            return std::nullopt;
        }
        at += 2;
    }
    return mac;
}

std::optional<std::int64_t> readTime(Element element) {
    constexpr std::string_view kPrefixes = "num";
    std::string_view const multiplier = trimmed(element.attribute("multiplier").value_or("m"));
    auto const value = readDecimal(element.content());
    double nanoseconds = 1e9;
    if (multiplier.size() == 1 && kPrefixes.find(multiplier) != std::string_view::npos) {
        nanoseconds = multiplier == "n" ? 1 : multiplier == "u" ? 1e3 : 1e6;
    } else if (multiplier == "µ") {
        nanoseconds = 1e3;
    } else if (multiplier == "k") {
        nanoseconds = 1e12;
    } else if (!multiplier.empty()) {
        return std::nullopt;
    }
    if (!value || *value < 0 || *value * nanoseconds > 9e18) {
        return std::nullopt;
    }
    return std::llround(*value * nanoseconds);
}

ControlBlockAddress readAddress(Element element, Document const& document,
                                DiagnosticList& diagnostics) {
    ControlBlockAddress address;
    auto const note = [&](Element at, std::string_view text) {
        diagnostics.add(DiagnosticCode::badAddress, document.placeOf(at), text);
    };
    for (Element const list : element.children("Address")) {
        for (Element const parameter : list.children("P")) {
            std::string_view const type = parameter.nameIn("type");
            std::string_view const text = parameter.content();
            bool isRead = true;
            if (type == "MAC-Address") {
                address.mac = readMac(text);
                isRead = address.mac.has_value();
            } else if (type == "APPID") {
                address.appId = readHex<std::uint16_t>(text, 0xFFFF);
                isRead = address.appId.has_value();
            } else if (type == "VLAN-ID") {
                address.vlanId = readHex<std::uint16_t>(text, 0xFFF);
                isRead = address.vlanId.has_value();
            } else if (type == "VLAN-PRIORITY") {
                address.vlanPriority = readHex<std::uint8_t>(text, 7);
                isRead = address.vlanPriority.has_value();
            }
            if (!isRead) {
                note(parameter, text);
            }
        }
    }
    for (auto const& [name, time] :
         {std::pair{"MinTime", &address.minTime}, std::pair{"MaxTime", &address.maxTime}}) {
        if (Element const child = element.child(name)) {
            *time = readTime(child);
            if (!*time) {
                note(child, child.content());
            }
        }
    }
    return address;
}

}  // namespace TalIec61850Scl::detail
