#include <uni_testing/assert_capture.h>

#include <mutex>
#include <sstream>

namespace uni_testing {
namespace {
std::mutex g_mutex;
AssertCapture* g_current = nullptr;
} // namespace

AssertCapture::AssertCapture()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    m_outer = g_current;
    g_current = this;
    m_previous = uni::setAssertHandler(&AssertCapture::handle);
}

AssertCapture::~AssertCapture()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_current = m_outer;
    uni::setAssertHandler(m_previous);
}

int AssertCapture::handle(const char* expression, const char* message, const char* file, int line)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    if (g_current != nullptr)
        g_current->m_records.push_back({expression, message, file, line});
    return 1;
}

std::vector<AssertRecord> AssertCapture::records() const
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return m_records;
}

std::size_t AssertCapture::size() const
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return m_records.size();
}

void AssertCapture::clear()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    m_records.clear();
}

::testing::AssertionResult AssertCapture::fired(const std::string& expression,
                                                const std::string& message_part) const
{
    const auto all = records();
    for (const AssertRecord& r : all) {
        if (r.expression == expression && r.message.find(message_part) != std::string::npos)
            return ::testing::AssertionSuccess();
    }
    std::ostringstream out;
    out << "no assertion \"" << expression << "\"";
    if (!message_part.empty())
        out << " with message containing \"" << message_part << "\"";
    out << "; fired: " << all.size();
    for (const AssertRecord& r : all)
        out << "\n  \"" << r.expression << "\" \"" << r.message << "\" at " << r.file << ":" << r.line;
    return ::testing::AssertionFailure() << out.str();
}

int failingAssertHandler(const char* expression, const char* message, const char* file, int line)
{
    ADD_FAILURE_AT(file, line) << "unexpected assertion \"" << expression << "\" " << message;
    return 1;
}

} // namespace uni_testing
