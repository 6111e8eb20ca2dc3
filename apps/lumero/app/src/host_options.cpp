#include <lumero_app/host_options.h>

#include <QCommandLineParser>
#include <QRegularExpression>

#include <cmath>

namespace lum {

namespace {

// One table for the parser and the usage text.
struct OptionSpec
{
    const char* name;
    const char* value_name; ///< null for a flag
    const char* description;
};

constexpr OptionSpec OPTIONS[] = {
    {"setup", "FILE", "Scene setup (XML) to open."},
    {"data", "FILE", "Recording (CSV, NMEA, GPX) to open; repeat for several."},
    {"tiles", "DIR", "Folder of downloaded map tiles; remembered for the next start."},
    {"time", "T", "Time to show after loading, in seconds."},
    {"plugins", "DIR", "Folder to load instrument plug-ins from."},
    {"grab", "FILE", "Saves a picture of the window once the scene is shown."},
    {"grab-delay", "MS", "Milliseconds between showing the scene and --grab (default 1500)."},
    {"quit-after-grab", nullptr, "Quits after --grab."},
    {"size", "WxH", "Size of the window in pixels (default 1280x800)."},
    {"report-startup", nullptr, "Prints the time from start to the first frame of the scene."},
    {"quit-after-first-frame", nullptr, "Quits after the first frame of the scene."},
    {"help", nullptr, "Shows this text."},
};

constexpr int MIN_WINDOW_SIDE = 200;
constexpr int MAX_WINDOW_SIDE = 8192;

bool parseSize(const QString& text, QSize& size)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return false;
    const int width = match.captured(1).toInt();
    const int height = match.captured(2).toInt();
    if (width < MIN_WINDOW_SIDE || height < MIN_WINDOW_SIDE || width > MAX_WINDOW_SIDE ||
        height > MAX_WINDOW_SIDE)
        return false;
    size = QSize(width, height);
    return true;
}

void addOptions(QCommandLineParser& parser)
{
    for (const OptionSpec& option : OPTIONS) {
        if (option.value_name != nullptr)
            parser.addOption({QString::fromLatin1(option.name), QString::fromLatin1(option.description),
                              QString::fromLatin1(option.value_name)});
        else
            parser.addOption({QString::fromLatin1(option.name), QString::fromLatin1(option.description)});
    }
}

} // namespace

ParsedHostOptions parseHostOptions(const QStringList& args)
{
    ParsedHostOptions result;
    HostOptions& options = result.options;
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    addOptions(parser);
    // The parser wants the program name first.
    if (!parser.parse(QStringList{QStringLiteral("lumero")} + args)) {
        result.error = parser.errorText();
        return result;
    }
    if (!parser.positionalArguments().isEmpty()) {
        result.error = QStringLiteral("Unexpected argument: %1").arg(parser.positionalArguments().front());
        return result;
    }
    // A value given twice where one is meant is a mistake, not a choice of the last.
    for (const char* single : {"setup", "tiles", "time", "plugins", "grab", "grab-delay", "size"}) {
        if (parser.values(QString::fromLatin1(single)).size() > 1) {
            result.error = QStringLiteral("--%1 given more than once").arg(QString::fromLatin1(single));
            return result;
        }
    }
    options.help = parser.isSet(QStringLiteral("help"));
    options.setup_path = parser.value(QStringLiteral("setup"));
    options.data_paths = parser.values(QStringLiteral("data"));
    options.tile_folder = parser.value(QStringLiteral("tiles"));
    options.plugin_folder = parser.value(QStringLiteral("plugins"));
    options.grab_path = parser.value(QStringLiteral("grab"));
    options.quit_after_grab = parser.isSet(QStringLiteral("quit-after-grab"));
    options.report_startup = parser.isSet(QStringLiteral("report-startup"));
    options.quit_after_first_frame = parser.isSet(QStringLiteral("quit-after-first-frame"));
    for (const QString& path : options.data_paths) {
        if (path.isEmpty()) {
            result.error = QStringLiteral("--data needs a file");
            return result;
        }
    }
    if (parser.isSet(QStringLiteral("time"))) {
        bool ok = false;
        const double time = parser.value(QStringLiteral("time")).toDouble(&ok);
        if (!ok || !std::isfinite(time) || time < 0.0) {
            result.error = QStringLiteral("--time needs seconds, 0 or more: %1")
                               .arg(parser.value(QStringLiteral("time")));
            return result;
        }
        options.time = time;
    }
    if (parser.isSet(QStringLiteral("grab-delay"))) {
        bool ok = false;
        const int delay = parser.value(QStringLiteral("grab-delay")).toInt(&ok);
        if (!ok || delay < 0 || delay > 600'000) {
            result.error = QStringLiteral("--grab-delay needs milliseconds from 0 to 600000: %1")
                               .arg(parser.value(QStringLiteral("grab-delay")));
            return result;
        }
        options.grab_delay_ms = delay;
    }
    if (parser.isSet(QStringLiteral("size")) &&
        !parseSize(parser.value(QStringLiteral("size")), options.window_size)) {
        result.error = QStringLiteral("--size needs WIDTHxHEIGHT, each side %1 to %2: %3")
                           .arg(MIN_WINDOW_SIDE)
                           .arg(MAX_WINDOW_SIDE)
                           .arg(parser.value(QStringLiteral("size")));
        return result;
    }
    if (options.quit_after_grab && options.grab_path.isEmpty()) {
        result.error = QStringLiteral("--quit-after-grab needs --grab FILE");
        return result;
    }
    return result;
}

QString hostUsageText()
{
    QString text =
        QStringLiteral("Usage: lumero [--setup FILE] [--data FILE ...] [--tiles DIR] [--time T] [options]\n"
                       "Shows a scene setup with its recordings on the map.\n\n");
    for (const OptionSpec& option : OPTIONS) {
        QString left = QStringLiteral("  --") + QString::fromLatin1(option.name);
        if (option.value_name != nullptr)
            left += QLatin1Char(' ') + QString::fromLatin1(option.value_name);
        text += left.leftJustified(28) + QString::fromLatin1(option.description) + QLatin1Char('\n');
    }
    return text;
}

} // namespace lum
