#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace lum {

/// What the command line of the host asks for.
struct HostOptions
{
    QString setup_path;                  ///< --setup; empty: the setup stays empty until one is opened
    QStringList data_paths;              ///< --data, in the order given: recording n gets node id n
    QString tile_folder;                 ///< --tiles; empty: the folder of the settings, if any
    std::optional<double> time;          ///< --time, seconds; unset: the start of the recordings
    QString plugin_folder;               ///< --plugins; empty: the folder the build put the plug-ins in
    QString grab_path;                   ///< --grab; empty: no picture of the window
    bool quit_after_grab = false;        ///< --quit-after-grab
    int grab_delay_ms = 1500;            ///< --grab-delay; lets tiles and the first frames settle
    QSize window_size{1280, 800};        ///< --size WxH
    bool report_startup = false;         ///< --report-startup: prints the time to the first frame
    bool quit_after_first_frame = false; ///< --quit-after-first-frame
    bool help = false;
};

struct ParsedHostOptions
{
    HostOptions options;
    QString error; ///< one line; empty when the arguments are usable
};

/// Reads the arguments after the program name; "--name value" and "--name=value" alike.
ParsedHostOptions parseHostOptions(const QStringList& args);

QString hostUsageText();

} // namespace lum
