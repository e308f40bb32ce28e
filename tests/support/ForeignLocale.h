#ifndef NYXCONFIG_FOREIGNLOCALE_H
#define NYXCONFIG_FOREIGNLOCALE_H

#include <clocale>
#include <locale>
#include <string>

namespace NyxTest
{

/// While it lives, the process's C++ locale groups digits by threes with "." and has "," for the decimal point, and the
/// C locale is the first of some European ones, or of UTF-8 ones, that the machine has.
class ForeignLocale
{
public:
    ForeignLocale() : m_formerC(std::setlocale(LC_ALL, nullptr))
    {
        // A locale with facets of its own has no name, so it leaves the C locale alone.
        m_former = std::locale::global(
            std::locale(std::locale(std::locale::classic(), new Grouping<char>), new Grouping<wchar_t>));
        for (const char* name : {"de_DE.utf8", "de_DE", "tr_TR.utf8", "en_US.utf8", "C.utf8"}) {
            if (std::setlocale(LC_ALL, name) != nullptr) {
                break;
            }
        }
    }
    ForeignLocale(const ForeignLocale&) = delete;
    ForeignLocale& operator=(const ForeignLocale&) = delete;
    ~ForeignLocale()
    {
        std::locale::global(m_former);
        std::setlocale(LC_ALL, m_formerC.c_str());
    }

private:
    // A locale owns its facets.
    template<class Char>
    class Grouping : public std::numpunct<Char>
    {
    protected:
        Char do_decimal_point() const override { return Char(','); }
        Char do_thousands_sep() const override { return Char('.'); }
        std::string do_grouping() const override { return "\3"; }
        std::basic_string<Char> do_truename() const override { return {Char('j'), Char('a')}; }
        std::basic_string<Char> do_falsename() const override { return {Char('n')}; }
    };

    std::string m_formerC;
    std::locale m_former;
};

} // namespace NyxTest

#endif
