#include <uni_base/countable.h>

#include <boost/core/demangle.hpp>

#include <algorithm>
#include <mutex>

namespace uni {
namespace {
struct Entry
{
    const std::type_info* type;
    detail::CountReader reader;
};

std::mutex& registryMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::vector<Entry>& registry()
{
    static std::vector<Entry> entries;
    return entries;
}

// "lum::qchannel::QChannel" -> "QChannel"; template arguments are kept whole.
std::string shortName(const std::string& full)
{
    int depth = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < full.size(); ++i) {
        const char c = full[i];
        if (c == '<')
            ++depth;
        else if (c == '>')
            --depth;
        else if (depth == 0 && c == ':' && i + 1 < full.size() && full[i + 1] == ':')
            start = i + 2;
    }
    return full.substr(start);
}
} // namespace

namespace detail {
void registerCountable(const std::type_info& type, CountReader reader)
{
    std::lock_guard<std::mutex> lock(registryMutex());
    registry().push_back({&type, reader});
}

std::string countableName(const std::type_info& type)
{
    return "::uni::Countable<" + shortName(boost::core::demangle(type.name())) + ">";
}
} // namespace detail

std::vector<std::pair<std::string, long>> countableCounts()
{
    std::vector<Entry> entries;
    {
        std::lock_guard<std::mutex> lock(registryMutex());
        entries = registry();
    }
    std::vector<std::pair<std::string, long>> result;
    result.reserve(entries.size());
    for (const Entry& entry : entries)
        result.emplace_back(detail::countableName(*entry.type), entry.reader());
    std::sort(result.begin(), result.end());
    return result;
}

} // namespace uni
