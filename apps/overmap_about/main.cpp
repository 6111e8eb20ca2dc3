// Prints the versions of the libraries Overmap was built against and runs with.
#include <uni_base/uni_log.h>

#include <GeographicLib/Constants.hpp>
#include <QtCore/QtGlobal>
#include <boost/version.hpp>
#include <fmt/core.h>
#include <pugixml.hpp>

int main()
{
    fmt::print("Overmap {}\n", OVERMAP_VERSION);
    fmt::print("  Qt             {} (built with {})\n", qVersion(), QT_VERSION_STR);
    fmt::print("  Boost          {}.{}.{}\n", BOOST_VERSION / 100000, BOOST_VERSION / 100 % 1000,
               BOOST_VERSION % 100);
    fmt::print("  GeographicLib  {}\n", GEOGRAPHICLIB_VERSION_STRING);
    fmt::print("  pugixml        {}.{}\n", PUGIXML_VERSION / 1000, PUGIXML_VERSION % 1000 / 10);
    fmt::print("  fmt            {}.{}.{}\n", FMT_VERSION / 10000, FMT_VERSION / 100 % 100,
               FMT_VERSION % 100);
    return 0;
}
