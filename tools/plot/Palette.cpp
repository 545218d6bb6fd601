#include "tools/plot/Palette.hpp"

namespace TalIec61850Tools {

std::array<PaletteColour, kInks> const& paletteColours() {
    static constexpr std::array<PaletteColour, kInks> kColours = {{
        {"ground", {"#ffffff"}, {"#14181f"}},
        {"panel", {"#f6f7f9"}, {"#1c222b"}},
        {"text", {"#1c2430"}, {"#e3e8ef"}},
        {"faint", {"#5b6675"}, {"#9aa6b5"}},
        {"line", {"#d5dae1"}, {"#39424f"}},
        {"grid", {"#e7eaee"}, {"#2a323d"}},
        {"accent", {"#1a5fb4"}, {"#7db2f5"}},
        {"error", {"#c01c28"}, {"#ff7b7b"}},
        {"warning", {"#b45309"}, {"#f5b453"}},
        {"note", {"#4a6fa5"}, {"#8fb4e6"}},
        {"missing", {"#788291", 0.28}, {"#aab4c3", 0.22}},
        {"bad", {"#d97706"}, {"#f59e0b"}},
        {"on", {"#2f7d4f"}, {"#57b881"}},
        {"other", {"#dbe4f0"}, {"#2f4057"}},
        {"a", {"#c9302c"}, {"#ff7a70"}},
        {"b", {"#a16207"}, {"#e5c04b"}},
        {"c", {"#1d4ed8"}, {"#7aa7ff"}},
        {"n", {"#4b5563"}, {"#b3bdc9"}},
        {"d", {"#7c3aed"}, {"#c4a1ff"}},
        {"e", {"#0f766e"}, {"#5fd0c2"}},
    }};
    return kColours;
}

}  // namespace TalIec61850Tools
