#pragma once

#include <lumero_app/host_actions.h>
#include <lumero_app/host_options.h>
#include <lumero_app/instrument_plugin_host.h>
#include <lumero_app/recording_loader.h>
#include <lumero_app/time_bar.h>

#include <instrument_interface/instrument_model.h>
#include <lum_host/host_application.h>

#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <memory>
#include <vector>

class QQmlApplicationEngine;

namespace overmap_replay {
struct LoadedRecordings;
class ChannelListFetcher;
} // namespace overmap_replay

namespace lum::calc {
class QCalculationExtension;
}

namespace lum {

/// The standalone host: one window with one map instrument, its properties page and a
/// time bar, over recordings and a setup opened from the command line or the File menu.
/// It is the window's "host" object.
class LumeroHost : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject* instrument READ instrumentObject NOTIFY instrumentChanged)
    Q_PROPERTY(QUrl viewUrl READ viewUrl CONSTANT)
    Q_PROPERTY(QUrl propertiesUrl READ propertiesUrl CONSTANT)
    Q_PROPERTY(lum::QTimeBar* timeBar READ timeBar CONSTANT)
    Q_PROPERTY(bool loading READ isLoading NOTIFY loadingChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusTextChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorTextChanged)
    Q_PROPERTY(QString setupFile READ setupFile NOTIFY setupFileChanged)
    Q_PROPERTY(QString tileFolder READ tileFolder NOTIFY tileFolderChanged)
    Q_PROPERTY(int viewGeneration READ viewGeneration NOTIFY viewGenerationChanged)
    Q_PROPERTY(QSize windowSize READ windowSize CONSTANT)

public:
    /// The identifier of the extension module that holds the scene setup.
    static constexpr const char* OVERMAP_EXTENSION_ID = "EB69CED9-93DA-4E49-A377-2161F674DC1D";
    /// The instrument type this host places.
    static constexpr const char* OVERMAP_TYPE = "lum::overmap";
    /// The setting that keeps the tile folder between starts.
    static constexpr const char* TILE_FOLDER_SETTING = "map/tileFolder";

    explicit LumeroHost(HostOptions options, QObject* parent = nullptr);
    ~LumeroHost() override;

    /// Measures the start-up from @p clock (started at the top of main) instead of from
    /// this object's construction.
    void setStartupClock(const QElapsedTimer& clock) { m_startup_clock = clock; }

    /// Loads the plug-in, opens the window, then the setup and, in the background, the
    /// recordings. False when the window cannot be made; a missing plug-in or an
    /// unreadable file only shows in errorText().
    bool start();

    QObject* instrumentObject() const;
    im::InstrumentModel* instrument() const { return m_instrument; }
    QUrl viewUrl() const;
    QUrl propertiesUrl() const;
    QTimeBar* timeBar() const { return m_time_bar; }
    bool isLoading() const { return m_loader->isBusy(); }
    QString statusText() const { return m_status_text; }
    QString errorText() const { return m_error_text; }
    QString setupFile() const;
    QString tileFolder() const { return m_tile_folder; }
    int viewGeneration() const { return m_view_generation; }
    QSize windowSize() const { return m_options.window_size; }
    HostApplication* application() const { return m_app; }
    QString pluginFile() const { return m_plugins.pluginFile(); }
    /// Works out the setup's calculations as result channels; null without recordings.
    calc::QCalculationExtension* calculations() const { return m_calculations.get(); }
    QQuickWindow* window() const { return m_window; }
    /// True once the scene shows: recordings loaded (if any were asked for), instrument and view made.
    bool isReady() const { return m_ready; }
    /// The instrument's view in the window, null before it is made.
    QObject* viewItem() const;
    QObject* propertiesItem() const;

    /// Replaces the recordings: the instrument is made anew on the new channels, with its settings.
    Q_INVOKABLE void openRecordings(const QStringList& paths);
    Q_INVOKABLE bool openSetup(const QString& path);
    /// Saves to the file of the setup; false without one.
    Q_INVOKABLE bool saveSetup();
    Q_INVOKABLE bool saveSetupAs(const QString& path);
    /// Remembers the folder and shows the street map from it, in a view made anew.
    Q_INVOKABLE void setTileFolder(const QString& folder);

    /// File dialogs of the File menu.
    Q_INVOKABLE void chooseRecordings();
    Q_INVOKABLE void chooseSetup();
    Q_INVOKABLE void chooseSaveSetupAs();
    Q_INVOKABLE void chooseTileFolder();

    /// A picture of the window as it is drawn now.
    QImage grab() const;

Q_SIGNALS:
    void instrumentChanged();
    void loadingChanged();
    void statusTextChanged();
    void errorTextChanged();
    void setupFileChanged();
    void tileFolderChanged();
    void viewGenerationChanged();
    /// The scene shows for the first time, or again after new recordings.
    void ready();
    /// The first frame with the scene is on screen, @p ms after the start-up clock began.
    void firstFrame(qint64 ms);

private:
    void setStatusText(const QString& text);
    void reportError(const QString& text);
    void onRecordingsLoaded(std::shared_ptr<overmap_replay::LoadedRecordings> recordings, QStringList paths);
    void replaceChannels(std::shared_ptr<overmap_replay::LoadedRecordings> recordings);
    /// The calculation extension on the present recordings' channels, and its end.
    void startCalculations();
    void stopCalculations();
    void createInstrument(const QVariantMap& settings);
    /// Points the instrument's camera at the setup's view (its centre and scale), or at the
    /// middle of its objects when the view names no place.
    void placeCameraOnSetup();
    QVariantMap takeDownInstrument();
    void becomeReady();
    void afterReady();

    HostOptions m_options;
    HostApplication* m_app;
    QExtensionModule* m_extension;
    QTimeBar* m_time_bar;
    RecordingLoader* m_loader;
    HostActions* m_actions;
    QmlFilesystem* m_filesystem;
    InstrumentPluginHost m_plugins;
    bool m_plugin_loaded = false;
    QPointer<im::InstrumentModel> m_instrument;
    /// The recordings whose channels are in the list: their samples live here.
    std::shared_ptr<overmap_replay::LoadedRecordings> m_recordings;
    std::unique_ptr<overmap_replay::ChannelListFetcher> m_calculation_fetcher;
    std::unique_ptr<calc::QCalculationExtension> m_calculations;
    QStringList m_recording_paths;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QPointer<QQuickWindow> m_window;
    QString m_status_text;
    QString m_error_text;
    QString m_tile_folder;
    int m_view_generation = 0;
    bool m_ready = false;
    bool m_first_frame_seen = false;
    bool m_time_applied = false;
    QElapsedTimer m_startup_clock;
};

/// Registers the host's QML types and, when it is built, the "Overmap" module; once per process.
void registerHostQmlTypes();

} // namespace lum
