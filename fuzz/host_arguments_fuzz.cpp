// Any bytes as the command line of lumero, one argument a line: the parser answers options
// or one error line, never a crash, and what it takes is in range.
#include <lumero_app/host_options.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QStringList args = text.split(QLatin1Char('\n'));
    const lum::ParsedHostOptions parsed = lum::parseHostOptions(args);
    if (parsed.error.contains(QLatin1Char('\n')))
        std::abort(); // errors are one line
    if (!parsed.error.isEmpty())
        return 0;
    const lum::HostOptions& options = parsed.options;
    if (options.time && !(std::isfinite(*options.time) && *options.time >= 0.0))
        std::abort();
    if (options.grab_delay_ms < 0 || options.grab_delay_ms > 600'000)
        std::abort();
    const QSize window = options.window_size;
    if (window.width() < 200 || window.height() < 200 || window.width() > 8192 || window.height() > 8192)
        std::abort();
    if (options.quit_after_grab && options.grab_path.isEmpty())
        std::abort();
    for (const QString& path : options.data_paths) {
        if (path.isEmpty())
            std::abort();
    }
    return 0;
}
