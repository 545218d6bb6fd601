#include <TalIec61850Scl/read/ReadNumber.hpp>
#include <cmath>
#include <system_error>

namespace TalIec61850Scl::detail {

std::optional<double> readDecimal(std::string_view text) noexcept {
    std::string_view digits = trimmed(text);
    if (digits.starts_with('+')) {
        digits.remove_prefix(1);
    }
    double number = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc{} || end != digits.data() + digits.size() || !std::isfinite(number)) {
        return std::nullopt;
    }
    return number;
}

}  // namespace TalIec61850Scl::detail
