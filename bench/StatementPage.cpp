#include "StatementPage.h"

#include <array>
#include <cstdint>

namespace {

constexpr int kRowsPerMonth = 40;

constexpr const char* kHead =
    "<!DOCTYPE html>\r\n<html>\r\n<head>\r\n"
    "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=windows-1252\">\r\n"
    "<title>Kontoauszug</title>\r\n"
    "<style type=\"text/css\">td.amount { text-align: right } h1 { color: #333 }</style>\r\n"
    "<script type=\"text/javascript\">var session = { open: true };</script>\r\n"
    "</head>\r\n<body>\r\n<h1>Kontoauszug f\xFCr Ihr Privatkonto</h1>\r\n";

constexpr const char* kMonthEnd =
    "</table>\r\n<style>.old { color: gray }</style>\r\n"
    "<script type=\"text/javascript\">\r\nif (rows < 40 && !done) { sum(\"<td>\"); }\r\n"
    "</script>\r\n<!-- end of the month -->\r\n";

constexpr std::array<const char*, 6> kTexts = {
    "Lastschrift Stadtwerke M\xFCnchen",
    "Gutschrift M&uuml;ller &amp; S&ouml;hne&nbsp;GmbH",
    "&Uuml;berweisung an B\xE4"
    "ckerei Gro&szlig;<br>Verwendungszweck: Brezeln",
    "Dauerauftrag <b>Miete</b> <i>Hauptstra\xDF"
    "e&nbsp;12</i>",
    "Zinsen &#40;1,5 &#37;&#41; &raquo;Sparplan&laquo;",
    "Scheck <a href=\"/scheck?id=12&amp;seite=2\" class=\"link\">Nr. 0815</a>",
};

// The same numbers on every machine.
class Numbers {
public:
    unsigned Below(unsigned bound) {
        m_state = m_state * 6'364'136'223'846'793'005u + 1'442'695'040'888'963'407u;
        return static_cast<unsigned>(m_state >> 33) % bound;
    }

private:
    std::uint64_t m_state = 1;
};

std::string TwoDigits(unsigned number) {
    return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

std::string Row(Numbers& numbers) {
    std::string row = "  <tr class=\"row\">\r\n    <td>";
    row += TwoDigits(1 + numbers.Below(28)) + "." + TwoDigits(1 + numbers.Below(12)) + ".2010";
    row += "</td>\r\n    <td>";
    row += kTexts[numbers.Below(kTexts.size())];
    row += "</td>\r\n    <td class=\"amount\">&nbsp;" + std::to_string(numbers.Below(5000)) + "," +
           TwoDigits(numbers.Below(100)) + "&nbsp;EUR</td>\r\n  </tr>\r\n";
    return row;
}

} // namespace

const char* const kClosingBalance = "Neuer Saldo: 1.234,56 EUR";

std::string StatementPage(std::size_t size) {
    Numbers numbers;
    std::string page = kHead;
    page.reserve(size + 1000);
    for (unsigned month = 1; page.size() < size; ++month) {
        page += "<h2>Monat " + std::to_string(month) + "</h2>\r\n<table border=\"0\">\r\n";
        for (int row = 0; row < kRowsPerMonth && page.size() < size; ++row)
            page += Row(numbers);
        page += kMonthEnd;
    }
    return page + "<p>" + kClosingBalance + "</p>\r\n</body>\r\n</html>\r\n";
}
