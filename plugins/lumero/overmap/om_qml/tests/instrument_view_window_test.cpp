// The instrument's view and properties page, loaded as a host loads them, over stand-ins
// of the host's modules (tests/qml): they load without a QML error, and the view keeps the
// instrument's settings and its map item in step.

#include "example_scene.h"

#include <om_ui/position_objects_filtered_model.h>
#include <om_ui/viewport.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QUrl>

#include <memory>

namespace {

// The plug-in's resources are compiled into the test, so the files load from where a host finds them.
const QString RESOURCES = QStringLiteral("qrc:///overmap/instrument");
const QString STAND_INS = QStringLiteral(OM_QML_TEST_QML_DIR);

/// The host's context objects that the view calls.
class Actions : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE void toggleInstrumentProperties() { ++toggles; }
    int toggles = 0;
};

class Filesystem : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE bool fileExists(const QUrl& url) const
    {
        return QFile::exists(url.scheme() == QLatin1String("qrc") ? QLatin1Char(':') + url.path()
                                                                  : url.toLocalFile());
    }
};

/// Qt messages of the QML engine while a test runs. Left out: the street map's known
/// connect complaint, and SVG icons on a machine without Qt's SVG image plug-in.
QStringList g_qml_warnings;
QtMessageHandler g_previous = nullptr;
void recordWarnings(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type != QtDebugMsg && type != QtInfoMsg && !message.contains(QStringLiteral("QDeclarativeGeoMap")) &&
        !message.contains(QStringLiteral("nullptr parameter")) &&
        !message.contains(QStringLiteral(".svg: Unsupported image format")))
        g_qml_warnings << message;
    g_previous(type, context, message);
}

/// The item named @p name among the visual descendants of @p item; delegates of a list
/// are not its object children.
QObject* findItem(QQuickItem* item, const QString& name)
{
    if (item->objectName() == name)
        return item;
    for (QQuickItem* child : item->childItems()) {
        if (QObject* found = findItem(child, name))
            return found;
    }
    return nullptr;
}

class InstrumentViewTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { om_qml_test::prepareProcess(); }

    void SetUp() override
    {
        g_qml_warnings.clear();
        g_previous = qInstallMessageHandler(&recordWarnings);
        QString error;
        ASSERT_TRUE(m_scene.load(error)) << error.toStdString();
        m_engine.addImportPath(STAND_INS);
        m_engine.rootContext()->setContextProperty(QStringLiteral("actions"), &m_actions);
        m_engine.rootContext()->setContextProperty(QStringLiteral("QmlFilesystem"), &m_filesystem);
        m_window.resize(640, 480);
    }

    void TearDown() override
    {
        m_items.clear();
        qInstallMessageHandler(g_previous);
    }

    /// Creates @p file of the resources with @p properties in the window.
    QQuickItem* create(const QString& file, const QVariantMap& properties)
    {
        QQmlComponent component(&m_engine, QUrl(RESOURCES + "/" + file));
        auto* item = qobject_cast<QQuickItem*>(component.createWithInitialProperties(properties));
        if (item == nullptr) {
            ADD_FAILURE() << component.errorString().toStdString();
            return nullptr;
        }
        m_items.emplace_back(item);
        item->setParentItem(m_window.contentItem());
        item->setSize(QSizeF(640, 480));
        return item;
    }

    QQuickItem* createView()
    {
        QQuickItem* view = create(QStringLiteral("OvermapInstrument.qml"),
                                  {{"app", QVariant::fromValue<QObject*>(&m_scene.host)}});
        if (view != nullptr)
            view->setProperty("instrumentModel", QVariant::fromValue<QObject*>(&m_scene.instrument));
        m_window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_window));
        return view;
    }

    om_qml_test::ExampleScene m_scene;
    QQmlEngine m_engine;
    Actions m_actions;
    Filesystem m_filesystem;
    QQuickWindow m_window;
    std::vector<std::unique_ptr<QQuickItem>> m_items;
};

TEST_F(InstrumentViewTest, ViewLoadsTheMapItemAndKeepsItInStepWithTheInstrument)
{
    QQuickItem* view = createView();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->objectName(), "OvermapInstrument");
    auto* map = qvariant_cast<overmap_ui::Viewport*>(view->property("mapItem"));
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(qvariant_cast<QObject*>(map->property("objectsModel")),
              m_scene.instrument.objectsFilterModel());
    EXPECT_EQ(map->property("compassShift").toDouble(), 30.0);
    EXPECT_EQ(map->property("scaleBottomMargin").toDouble(), 4.0 + 25.0) << "tiny spacing and the map's 25";

    m_scene.instrument.setZoomFactor(3.5);
    EXPECT_DOUBLE_EQ(map->scaling(), 3.5);
    const QGeoCoordinate there(47.996, 10.246);
    map->setCenter(there);
    EXPECT_EQ(m_scene.instrument.center(), there) << "the item's centre goes back into the instrument";
    m_scene.instrument.setMapHeading(40.0);
    EXPECT_DOUBLE_EQ(map->rotation(), 40.0);

    m_scene.instrument.setShowMap(false);
    EXPECT_EQ(map->property("scaleBottomMargin").toDouble(), 4.0);

    view->setProperty("displayedTime", 42.0);
    EXPECT_DOUBLE_EQ(m_scene.geoModel()->displayTime(), 42.0);

    QMetaObject::invokeMethod(map, "doubleClicked");
    EXPECT_EQ(m_actions.toggles, 1);
    EXPECT_TRUE(g_qml_warnings.isEmpty()) << g_qml_warnings.join('\n').toStdString();
}

TEST_F(InstrumentViewTest, FollowingResolvesTheObjectOfTheViewsOwnModel)
{
    QQuickItem* view = createView();
    ASSERT_NE(view, nullptr);
    auto* map = qvariant_cast<overmap_ui::Viewport*>(view->property("mapItem"));
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(qvariant_cast<QObject*>(map->property("positionObjectToFollow")), nullptr);
    m_scene.instrument.setPositionObjectToFollow(2);
    m_scene.instrument.setFollowObjectPosition(true);
    auto* followed = qvariant_cast<QObject*>(map->property("positionObjectToFollow"));
    ASSERT_NE(followed, nullptr);
    EXPECT_EQ(followed->property("objectId").toInt(), 2);
    EXPECT_NE(followed, m_scene.car(2)) << "the view's second model has wrappers of its own";
    m_scene.instrument.setFollowObjectPosition(false);
    EXPECT_EQ(qvariant_cast<QObject*>(map->property("positionObjectToFollow")), nullptr);
    EXPECT_TRUE(g_qml_warnings.isEmpty()) << g_qml_warnings.join('\n').toStdString();
}

TEST_F(InstrumentViewTest, PropertiesPageSwitchHidesAnObject)
{
    QQuickItem* page = create(QStringLiteral("OvermapInstrumentProperties.qml"),
                              {{"instrument", QVariant::fromValue<QObject*>(&m_scene.instrument)}});
    ASSERT_NE(page, nullptr);
    m_window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    EXPECT_EQ(page->property("title").toString(), "Overmap");
    QTest::qWait(50);
    auto* car_switch = findItem(page, QStringLiteral("filterSwitch_1"));
    ASSERT_NE(car_switch, nullptr);
    EXPECT_TRUE(car_switch->property("checked").toBool());
    car_switch->setProperty("checked", false);
    EXPECT_TRUE(m_scene.instrument.isObjectFiltered(1));
    // Another view shows it again: the switch follows.
    m_scene.instrument.setObjectFiltered(1, false);
    EXPECT_TRUE(car_switch->property("checked").toBool());
    EXPECT_TRUE(g_qml_warnings.isEmpty()) << g_qml_warnings.join('\n').toStdString();
}

} // namespace

#include "instrument_view_window_test.moc"
