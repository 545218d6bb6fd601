#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace TalIec61850Tools {

/// On what ground a picture is drawn.
enum class Theme : std::uint8_t { light, dark };

/// What a colour is for. Order and names are those of the page of `report`.
enum class Ink : std::uint8_t {
    ground,
    panel,
    text,
    faint,
    line,
    grid,
    accent,
    error,
    warning,
    note,
    missing,
    bad,
    on,
    other,
    a,
    b,
    c,
    n,
    d,
    e,
};

/// A colour as SVG 1.1 has it: without transparency, which is told beside it.
struct InkColour {
    /// #rrggbb
    std::string_view hex;
    double opacity = 1;

    friend bool operator==(InkColour const&, InkColour const&) = default;
};

/// A colour in both themes.
struct PaletteColour {
    /// Of the variable in the style sheet of the page, without the dashes.
    std::string_view name;
    InkColour light;
    InkColour dark;
};

inline constexpr std::size_t kInks = 20;

/// The colours of pictures, by Ink: those of tools/report/page/page.css.
[[nodiscard]] std::array<PaletteColour, kInks> const& paletteColours();

/// The colours of a theme.
class Palette {
public:
    explicit Palette(Theme theme) : theme_(theme) {}

    [[nodiscard]] InkColour const& operator[](Ink ink) const {
        PaletteColour const& colour = paletteColours()[static_cast<std::size_t>(ink)];
        return theme_ == Theme::light ? colour.light : colour.dark;
    }

private:
    Theme theme_;
};

}  // namespace TalIec61850Tools
