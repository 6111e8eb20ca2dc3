#include <lum_utils/csv_builder.h>
#include <lum_utils/dif_builder.h>
#include <lum_utils/spreadsheet_ml_builder.h>

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace {

/// Sets the process's numeric locale to one with a decimal comma while it lives;
/// empty name() when the machine has none installed.
class CommaLocale
{
public:
    CommaLocale()
    {
        const char* previous = std::setlocale(LC_NUMERIC, nullptr);
        m_previous = previous != nullptr ? previous : "C";
        for (const char* name :
             {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "de_DE", "fr_FR"}) {
            if (std::setlocale(LC_NUMERIC, name) != nullptr) {
                m_name = name;
                return;
            }
        }
    }
    ~CommaLocale() { std::setlocale(LC_NUMERIC, m_previous.c_str()); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    const std::string& name() const { return m_name; }

private:
    std::string m_previous;
    std::string m_name;
};

} // namespace

// A Qt application takes the process locale from the environment; a German user's
// clipboard CSV once read "1,5" where every spreadsheet expects "1.5".
TEST(SpreadsheetLocale, NumbersKeepTheDecimalPointWhateverTheProcessLocale)
{
    CommaLocale comma;
    if (comma.name().empty())
        GTEST_SKIP() << "no locale with a decimal comma installed";
    char probe[16];
    std::snprintf(probe, sizeof(probe), "%g", 1.5);
    ASSERT_EQ(std::string(probe), "1,5") << comma.name();

    lum_utils::CSVBuilder csv;
    lum_utils::DIFBuilder dif;
    lum_utils::SpreadsheetMLBuilder xml;
    for (lum_utils::IfSimpleSpreadsheetBuilder* builder :
         std::initializer_list<lum_utils::IfSimpleSpreadsheetBuilder*>{&csv, &dif, &xml}) {
        builder->startTable("t", 1, 1);
        builder->beginRow();
        builder->addCell(1.5);
        builder->endRow();
        builder->endTable();
    }
    EXPECT_EQ(csv.toString(), "1.5\r\n");
    EXPECT_NE(dif.toString().find("0,1.500000\r\nV\r\n"), std::string::npos);
    EXPECT_NE(xml.toString().find("<Data ss:Type=\"Number\">1.5</Data>"), std::string::npos);
}
