// The window tests' main: a QApplication on the display that xvfb-run gives, and the
// settings of a fresh user in a folder of their own.
#include <uni_base/uni_assert.h>
#include <uni_testing/assert_capture.h>
#include <uni_testing/qt_message_capture.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Trelvane"));
    QApplication::setApplicationName(QStringLiteral("lumero-window-tests"));
    QTemporaryDir settings_dir;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings_dir.path());
    // No machine of ours reaches the internet: the probe fails at once instead of timing out.
    QSettings().setValue(QStringLiteral("overmap/onlineProbeUrl"), QStringLiteral("http://127.0.0.1:9/"));
    uni::setAssertHandler(&uni_testing::failingAssertHandler);
    uni_testing::installQtMessageHandler();
    return RUN_ALL_TESTS();
}
