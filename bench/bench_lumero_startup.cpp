// Time from the start of lumero to the first frame that shows the example scene, as the
// host itself measures it (from the top of main) and as a whole process start seen from
// outside. Needs a display: run under "xvfb-run -a" on a machine without one.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>

namespace {

void BM_LumeroStartToFirstFrame(benchmark::State& state)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        state.SkipWithError("needs a display: run under xvfb-run -a");
        return;
    }
    const QString examples = QStringLiteral(LUMERO_EXAMPLES_DIR);
    const QStringList args{QStringLiteral("--setup"),          examples + "/setups/proving_ground.xml",
                           QStringLiteral("--data"),           examples + "/recordings/car1_drive_100hz.csv",
                           QStringLiteral("--data"),           examples + "/recordings/car2_drive_100hz.csv",
                           QStringLiteral("--time"),           QStringLiteral("65"),
                           QStringLiteral("--report-startup"), QStringLiteral("--quit-after-first-frame")};
    static const QRegularExpression report(QStringLiteral("first frame of the scene after (\\d+) ms"));
    double inside_ms = 0.0;
    for (auto _ : state) {
        QElapsedTimer clock;
        clock.start();
        QProcess lumero;
        lumero.start(QStringLiteral(LUMERO_BINARY), args);
        if (!lumero.waitForFinished(60'000) || lumero.exitCode() != 0) {
            state.SkipWithError("lumero did not finish");
            return;
        }
        state.SetIterationTime(static_cast<double>(clock.nsecsElapsed()) * 1e-9);
        const auto match = report.match(QString::fromLocal8Bit(lumero.readAllStandardOutput()));
        if (!match.hasMatch()) {
            state.SkipWithError("lumero reported no first frame");
            return;
        }
        inside_ms += match.captured(1).toDouble();
    }
    // The process start as a whole is the iteration time; this is the part from main on.
    state.counters["from_main_ms"] = benchmark::Counter(inside_ms, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_LumeroStartToFirstFrame)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
