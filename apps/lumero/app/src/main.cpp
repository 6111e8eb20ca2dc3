// lumero: the standalone host. Shows a scene setup with its recordings in the map
// instrument, loaded from its plug-in file, with a time bar to move through them.
#include <lumero_app/host_options.h>
#include <lumero_app/lumero_host.h>

#include <uni_base/uni_log.h>

#include <QApplication>
#include <QElapsedTimer>

#include <cstdio>

int main(int argc, char** argv)
{
    QElapsedTimer startup_clock;
    startup_clock.start();
    uni::initConsoleLogging(SEV_WARNING);
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Trelvane"));
    QApplication::setApplicationName(QStringLiteral("lumero"));

    const lum::ParsedHostOptions parsed = lum::parseHostOptions(QApplication::arguments().mid(1));
    if (!parsed.error.isEmpty()) {
        std::fprintf(stderr, "lumero: %s\n%s", qPrintable(parsed.error), qPrintable(lum::hostUsageText()));
        return 2;
    }
    if (parsed.options.help) {
        std::printf("%s", qPrintable(lum::hostUsageText()));
        return 0;
    }
    lum::LumeroHost host(parsed.options);
    host.setStartupClock(startup_clock);
    if (!host.start()) {
        std::fprintf(stderr, "lumero: the window could not be made\n");
        return 1;
    }
    return QApplication::exec();
}
