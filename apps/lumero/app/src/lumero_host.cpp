#include <lumero_app/lumero_host.h>

#include <instrument_interface/instrument_model.h>
#include <lum_calc_extension/qcalculation_extension.h>
#include <lum_host/qextension_module.h>
#include <overmap_replay/channel_list_fetcher.h>
#include <overmap_replay/replay_inputs.h>
#include <qchannel/qchannel.h>

#include <ferrin_core/channel.h>
#include <ferrin_core/time_base.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGeoCoordinate>
#include <QMetaProperty>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QSettings>
#include <QTimer>

#include <cstdio>
#include <limits>

#ifdef LUMERO_HAVE_OM_QML
namespace overmap_qml {
void registerQmlModule();
}
#endif

namespace lum {

namespace {

// The node that the setup's local channel ids are made into channel ids with.
constexpr std::uint32_t EXTENSION_NODE_ID = 0x7f;

const QString RECORDING_FILTER =
    QStringLiteral("Recordings (*.csv *.nmea *.nma *.txt *.log *.gpx);;All files (*)");
const QString SETUP_FILTER = QStringLiteral("Setups (*.xml);;All files (*)");

// The shortest sample interval of all channels: the time bar steps by it.
double shortestSampleInterval(const overmap_replay::LoadedRecordings& recordings)
{
    double interval = std::numeric_limits<double>::infinity();
    for (const auto& channel : recordings.manager->channels()) {
        const auto& time_base = channel->getTimeBase();
        if (time_base != nullptr && time_base->getFrequency() > 0.0)
            interval = std::min(interval, 1.0 / time_base->getFrequency());
    }
    return std::isfinite(interval) ? interval : 0.0;
}

} // namespace

void registerHostQmlTypes()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    const char* uri = "Lumero";
    const QString reason = QStringLiteral("made by the host");
    qmlRegisterUncreatableType<HostApplication>(uri, 1, 0, "Application", reason);
    qmlRegisterUncreatableType<IfApplicationState>(uri, 1, 0, "ApplicationState", reason);
    qmlRegisterUncreatableType<QExtensionModule>(uri, 1, 0, "ExtensionModule", reason);
    qmlRegisterUncreatableType<QTimeBar>(uri, 1, 0, "TimeBar", reason);
    qmlRegisterUncreatableType<HostActions>(uri, 1, 0, "Actions", reason);
#ifdef LUMERO_HAVE_OM_QML
    overmap_qml::registerQmlModule();
#endif
}

LumeroHost::LumeroHost(HostOptions options, QObject* parent)
    : QObject(parent), m_options(std::move(options)), m_app(new HostApplication(this)),
      m_extension(new QExtensionModule(QString::fromLatin1(OVERMAP_EXTENSION_ID), EXTENSION_NODE_ID)),
      m_time_bar(new QTimeBar(this)), m_loader(new RecordingLoader(this)), m_actions(new HostActions(this)),
      m_filesystem(new QmlFilesystem(this))
{
    m_startup_clock.start();
    m_app->addExtensionModule(m_extension);
    for (QObject* object : std::initializer_list<QObject*>{m_time_bar, m_actions, m_filesystem})
        QQmlEngine::setObjectOwnership(object, QQmlEngine::CppOwnership);
    connect(m_extension, &QExtensionModule::fileNameChanged, this, &LumeroHost::setupFileChanged);
    connect(m_loader, &RecordingLoader::busyChanged, this, &LumeroHost::loadingChanged);
    connect(m_loader, &RecordingLoader::loaded, this, &LumeroHost::onRecordingsLoaded);
    connect(m_time_bar, &QTimeBar::timeChanged, m_app->applicationState(),
            &ApplicationState::setDisplayedTime);

    QSettings settings;
    if (!m_options.tile_folder.isEmpty()) {
        m_tile_folder = QFileInfo(m_options.tile_folder).absoluteFilePath();
        settings.setValue(QString::fromLatin1(TILE_FOLDER_SETTING), m_tile_folder);
    } else {
        m_tile_folder = settings.value(QString::fromLatin1(TILE_FOLDER_SETTING)).toString();
    }
}

LumeroHost::~LumeroHost()
{
    // The window and its views go before the instrument they bind to, the instrument
    // before the channels it points at.
    m_engine.reset();
    delete m_instrument;
    stopCalculations();
}

bool LumeroHost::start()
{
    registerHostQmlTypes();
    const QString folder = m_options.plugin_folder.isEmpty() ? InstrumentPluginHost::defaultPluginFolder()
                                                             : m_options.plugin_folder;
    m_plugin_loaded = m_plugins.load(folder, OVERMAP_TYPE);
    if (!m_plugin_loaded)
        reportError(m_plugins.error());

    m_engine = std::make_unique<QQmlApplicationEngine>();
    m_engine->addImportPath(QStringLiteral("qrc:/qml"));
    QQmlContext* context = m_engine->rootContext();
    context->setContextProperty(QStringLiteral("host"), this);
    context->setContextProperty(QStringLiteral("app"), m_app);
    context->setContextProperty(QStringLiteral("actions"), m_actions);
    context->setContextProperty(QStringLiteral("QmlFilesystem"), m_filesystem);
    context->setContextProperty(QStringLiteral("mapTileFolder"), m_tile_folder);
    m_engine->load(QUrl(QStringLiteral("qrc:/lumero/main.qml")));
    if (m_engine->rootObjects().isEmpty())
        return false;
    m_window = qobject_cast<QQuickWindow*>(m_engine->rootObjects().front());
    if (m_window == nullptr)
        return false;
    connect(m_window, &QQuickWindow::frameSwapped, this, [this] {
        if (!m_ready || m_first_frame_seen)
            return;
        m_first_frame_seen = true;
        const qint64 ms = m_startup_clock.elapsed();
        if (m_options.report_startup)
            std::printf("first frame of the scene after %lld ms\n", static_cast<long long>(ms));
        Q_EMIT firstFrame(ms);
        if (m_options.quit_after_first_frame)
            QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    });

    if (!m_options.setup_path.isEmpty())
        openSetup(m_options.setup_path);
    if (!m_options.data_paths.isEmpty()) {
        openRecordings(m_options.data_paths);
    } else {
        createInstrument({});
        becomeReady();
    }
    return true;
}

QObject* LumeroHost::instrumentObject() const
{
    return m_instrument.data();
}

QUrl LumeroHost::viewUrl() const
{
    return m_plugin_loaded ? QUrl(m_plugins.descriptor().instrument_view_url) : QUrl();
}

QUrl LumeroHost::propertiesUrl() const
{
    return m_plugin_loaded ? QUrl(m_plugins.descriptor().properties_page_url) : QUrl();
}

QString LumeroHost::setupFile() const
{
    return m_extension->fileName();
}

QObject* LumeroHost::viewItem() const
{
    QObject* loader =
        m_window ? m_window->findChild<QObject*>(QStringLiteral("instrumentViewLoader")) : nullptr;
    return loader ? loader->property("item").value<QObject*>() : nullptr;
}

QObject* LumeroHost::propertiesItem() const
{
    QObject* loader =
        m_window ? m_window->findChild<QObject*>(QStringLiteral("instrumentPropertiesLoader")) : nullptr;
    return loader ? loader->property("item").value<QObject*>() : nullptr;
}

void LumeroHost::openRecordings(const QStringList& paths)
{
    if (paths.isEmpty())
        return;
    setStatusText(tr("Loading %1 ...").arg(paths.join(QStringLiteral(", "))));
    m_loader->load(paths);
}

bool LumeroHost::openSetup(const QString& path)
{
    QString error;
    if (!m_extension->loadFromFile(path, &error)) {
        reportError(tr("Cannot open the setup %1: %2").arg(path, error));
        return false;
    }
    placeCameraOnSetup();
    return true;
}

void LumeroHost::placeCameraOnSetup()
{
    if (m_instrument == nullptr)
        return;
    // Through the meta-object: the host links nothing of the instrument.
    QObject* model = m_instrument->property("geoModel").value<QObject*>();
    QObject* plane = model ? model->property("referencePlane").value<QObject*>() : nullptr;
    QObject* objects = model ? model->property("objectsManager").value<QObject*>() : nullptr;
    if (plane == nullptr || objects == nullptr)
        return;
    const auto usable = [](const QGeoCoordinate& c) {
        return c.isValid() && (c.latitude() != 0.0 || c.longitude() != 0.0);
    };
    QGeoCoordinate center = plane->property("viewCenter").value<QGeoCoordinate>();
    if (!usable(center))
        center = objects->property("allObjectsCenter").value<QGeoCoordinate>();
    if (!usable(center))
        return;
    m_instrument->setProperty("center", QVariant::fromValue(center));
    const double scaling = plane->property("viewScaling").toDouble();
    if (scaling > 0.0)
        m_instrument->setProperty("zoomFactor", scaling);
}

bool LumeroHost::saveSetup()
{
    if (m_extension->fileName().isEmpty()) {
        reportError(tr("The setup has no file yet: use Save setup as"));
        return false;
    }
    return saveSetupAs(m_extension->fileName());
}

bool LumeroHost::saveSetupAs(const QString& path)
{
    QString error;
    if (!m_extension->saveToFile(path, &error)) {
        reportError(tr("Cannot save the setup to %1: %2").arg(path, error));
        return false;
    }
    setStatusText(tr("Setup saved to %1").arg(path));
    return true;
}

void LumeroHost::setTileFolder(const QString& folder)
{
    const QString absolute = folder.isEmpty() ? QString() : QFileInfo(folder).absoluteFilePath();
    if (absolute == m_tile_folder)
        return;
    m_tile_folder = absolute;
    QSettings().setValue(QString::fromLatin1(TILE_FOLDER_SETTING), m_tile_folder);
    if (m_engine)
        m_engine->rootContext()->setContextProperty(QStringLiteral("mapTileFolder"), m_tile_folder);
    Q_EMIT tileFolderChanged();
    // The street map reads its folder when it is made: the view is made anew.
    ++m_view_generation;
    Q_EMIT viewGenerationChanged();
}

void LumeroHost::chooseRecordings()
{
    const QStringList paths =
        QFileDialog::getOpenFileNames(nullptr, tr("Open recordings"), QString(), RECORDING_FILTER);
    openRecordings(paths);
}

void LumeroHost::chooseSetup()
{
    const QString path = QFileDialog::getOpenFileName(nullptr, tr("Open setup"), QString(), SETUP_FILTER);
    if (!path.isEmpty())
        openSetup(path);
}

void LumeroHost::chooseSaveSetupAs()
{
    const QString path =
        QFileDialog::getSaveFileName(nullptr, tr("Save setup as"), m_extension->fileName(), SETUP_FILTER);
    if (!path.isEmpty())
        saveSetupAs(path);
}

void LumeroHost::chooseTileFolder()
{
    const QString folder =
        QFileDialog::getExistingDirectory(nullptr, tr("Folder of map tiles"), m_tile_folder);
    if (!folder.isEmpty())
        setTileFolder(folder);
}

QImage LumeroHost::grab() const
{
    return m_window ? m_window->grabWindow() : QImage();
}

void LumeroHost::setStatusText(const QString& text)
{
    if (text == m_status_text)
        return;
    m_status_text = text;
    Q_EMIT statusTextChanged();
}

void LumeroHost::reportError(const QString& text)
{
    std::fprintf(stderr, "lumero: %s\n", qPrintable(text));
    m_error_text = text;
    Q_EMIT errorTextChanged();
}

void LumeroHost::onRecordingsLoaded(std::shared_ptr<overmap_replay::LoadedRecordings> recordings,
                                    QStringList paths)
{
    if (!*recordings) {
        reportError(tr("Cannot open the recordings: %1").arg(QString::fromStdString(recordings->error)));
        setStatusText(QString());
        if (m_instrument == nullptr) {
            // Show the setup without channels rather than nothing.
            createInstrument({});
            becomeReady();
        }
        return;
    }
    m_recording_paths = paths;
    // The view lets go of the instrument, the instrument of the channels; the old ones go
    // on the event loop before the new channels come in.
    const QVariantMap settings = takeDownInstrument();
    QTimer::singleShot(0, this, [this, recordings, settings] {
        replaceChannels(recordings);
        createInstrument(settings);
        setStatusText(QString());
        becomeReady();
    });
}

void LumeroHost::replaceChannels(std::shared_ptr<overmap_replay::LoadedRecordings> recordings)
{
    qchannel::QChannelListModel* channels = m_app->getChannels();
    stopCalculations();
    channels->clearAll();
    QList<QObject*> fresh;
    for (const auto& channel : recordings->manager->channels())
        fresh << new qchannel::QChannel(channel);
    channels->appendChannels(fresh);
    m_recordings = std::move(recordings);
    startCalculations();
    m_time_bar->setRange(0.0, m_recordings->end_time, shortestSampleInterval(*m_recordings));
    m_app->applicationState()->setMode(IfApplicationState::REPLAY);
    QStringList names;
    for (const QString& path : m_recording_paths)
        names << QFileInfo(path).completeBaseName();
    m_app->applicationState()->setMeasurementName(names.join(QStringLiteral(", ")));
}

void LumeroHost::startCalculations()
{
    // The result channels reach the window's list through the recordings' manager, which
    // the list follows; the first ones are in before the instrument looks for them.
    qchannel::QChannelListModel* channels = m_app->getChannels();
    m_recordings->manager->addListObserver(channels);
    m_calculation_fetcher = std::make_unique<overmap_replay::ChannelListFetcher>(*m_recordings->manager);
    m_calculations = std::make_unique<calc::QCalculationExtension>(*m_extension, *m_recordings->manager,
                                                                   *m_calculation_fetcher);
    channels->applyPendingChannelNotifications();
}

void LumeroHost::stopCalculations()
{
    if (m_recordings == nullptr)
        return;
    // The list stops following first: it clears the channels itself.
    m_recordings->manager->removeListObserver(m_app->getChannels());
    m_calculations.reset();
    m_calculation_fetcher.reset();
}

void LumeroHost::createInstrument(const QVariantMap& settings)
{
    if (!m_plugin_loaded || m_instrument != nullptr)
        return;
    m_instrument = m_plugins.descriptor().createInstrument(this);
    if (m_instrument == nullptr) {
        reportError(tr("The plug-in made no instrument"));
        return;
    }
    QQmlEngine::setObjectOwnership(m_instrument, QQmlEngine::CppOwnership);
    for (auto it = settings.begin(); it != settings.end(); ++it)
        m_instrument->setProperty(it.key().toLatin1().constData(), it.value());
    m_instrument->setApplication(m_app);
    m_instrument->connectToApplication();
    // A new instrument looks where the setup's view does; one that is made anew keeps its camera.
    if (settings.isEmpty())
        placeCameraOnSetup();
    Q_EMIT instrumentChanged();
}

QVariantMap LumeroHost::takeDownInstrument()
{
    QVariantMap settings;
    if (m_instrument == nullptr)
        return settings;
    // How the instrument looks at the scene survives new recordings: every property it
    // declares that can be written back.
    const QMetaObject* meta = m_instrument->metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (property.isWritable() && property.isStored())
            settings.insert(QString::fromLatin1(property.name()), property.read(m_instrument));
    }
    im::InstrumentModel* old = m_instrument;
    m_instrument = nullptr;
    m_ready = false;
    Q_EMIT instrumentChanged();
    old->deleteLater();
    return settings;
}

void LumeroHost::becomeReady()
{
    if (!m_time_applied && m_options.time) {
        m_time_applied = true;
        m_time_bar->setTime(*m_options.time);
    }
    m_ready = true;
    m_first_frame_seen = false;
    if (m_window)
        m_window->update();
    Q_EMIT ready();
    afterReady();
}

void LumeroHost::afterReady()
{
    if (m_options.grab_path.isEmpty())
        return;
    const QString path = m_options.grab_path;
    m_options.grab_path.clear();
    QTimer::singleShot(m_options.grab_delay_ms, this, [this, path] {
        const QImage picture = grab();
        if (picture.isNull() || !picture.save(path))
            reportError(tr("Cannot save the picture of the window to %1").arg(path));
        else
            std::printf("picture: %s\n", qPrintable(path));
        std::fflush(stdout);
        if (m_options.quit_after_grab)
            QCoreApplication::exit(picture.isNull() ? 1 : 0);
    });
}

} // namespace lum
