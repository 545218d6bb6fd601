#pragma once

#include <clocale>
#include <locale>
#include <string>

namespace TalTest {

/// Puts the locales of the C and of the C++ library back.
class LocaleRestorer {
public:
    LocaleRestorer() = default;
    LocaleRestorer(LocaleRestorer const&) = delete;
    LocaleRestorer& operator=(LocaleRestorer const&) = delete;
    ~LocaleRestorer() {
        std::locale::global(cxx_);
        std::setlocale(LC_ALL, c_.c_str());
    }

private:
    std::string c_ = std::setlocale(LC_ALL, nullptr);
    std::locale cxx_;
};

/// For its lifetime, numbers in the global locale of the C++ library look like 1.234,5.
class GlobalDecimalComma {
public:
    GlobalDecimalComma() { std::locale::global(std::locale(std::locale::classic(), new Numbers)); }

private:
    class Numbers : public std::numpunct<char> {
        [[nodiscard]] char do_decimal_point() const override { return ','; }
        [[nodiscard]] char do_thousands_sep() const override { return '.'; }
        [[nodiscard]] std::string do_grouping() const override { return "\3"; }
    };

    LocaleRestorer restorer_;
};

}  // namespace TalTest
