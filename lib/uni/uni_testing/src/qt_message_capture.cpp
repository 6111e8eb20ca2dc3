#include <uni_testing/model_tester.h>
#include <uni_testing/qt_message_capture.h>

#include <QAbstractItemModelTester>
#include <QString>

#include <cstdio>
#include <mutex>
#include <sstream>

namespace uni_testing {
namespace {
std::mutex g_mutex;
QtMessageCapture* g_current = nullptr;

const char* typeName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return "debug";
    case QtInfoMsg:
        return "info";
    case QtWarningMsg:
        return "warning";
    case QtCriticalMsg:
        return "critical";
    case QtFatalMsg:
        return "fatal";
    }
    return "unknown";
}
} // namespace

struct QtMessageRouter
{
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        const std::string category = context.category != nullptr ? context.category : "";
        const std::string message = text.toStdString();
        const bool model_tester = category == "qt.modeltest";
        {
            std::lock_guard<std::mutex> lock(g_mutex);
            if (g_current != nullptr && !model_tester) {
                g_current->m_records.push_back({type, category, message});
                return;
            }
        }
        if (type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg) {
            ADD_FAILURE_AT(context.file != nullptr ? context.file : "(qt)", context.line)
                << "unexpected Qt " << typeName(type) << " [" << category << "]: " << message;
            if (type != QtFatalMsg)
                return;
        }
        std::fprintf(stderr, "%s: %s\n", typeName(type), message.c_str());
    }
};

QtMessageCapture::QtMessageCapture()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    m_outer = g_current;
    g_current = this;
}

QtMessageCapture::~QtMessageCapture()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_current = m_outer;
}

std::vector<QtMessageRecord> QtMessageCapture::records() const
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return m_records;
}

void QtMessageCapture::clear()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    m_records.clear();
}

std::size_t QtMessageCapture::count(QtMsgType type, const std::string& text) const
{
    std::size_t n = 0;
    for (const QtMessageRecord& r : records()) {
        if (r.type == type && r.message.find(text) != std::string::npos)
            ++n;
    }
    return n;
}

::testing::AssertionResult QtMessageCapture::contains(QtMsgType type, const std::string& text) const
{
    if (count(type, text) > 0)
        return ::testing::AssertionSuccess();
    const auto all = records();
    std::ostringstream out;
    out << "no Qt " << typeName(type) << " containing \"" << text << "\"; recorded: " << all.size();
    for (const QtMessageRecord& r : all)
        out << "\n  " << typeName(r.type) << " [" << r.category << "] " << r.message;
    return ::testing::AssertionFailure() << out.str();
}

void installQtMessageHandler()
{
    qInstallMessageHandler(&QtMessageRouter::handle);
}

QAbstractItemModelTester* attachModelTester(QAbstractItemModel* model)
{
    // Warning mode: the tester goes on after a fault and the handler fails the test,
    // which names every fault instead of aborting at the first.
    return new QAbstractItemModelTester(model, QAbstractItemModelTester::FailureReportingMode::Warning,
                                        model);
}

} // namespace uni_testing
