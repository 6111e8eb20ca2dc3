#include <qt_utils/qt_checked_connect.h>

#include <string>
#include <vector>

namespace qt_utils {

const char* connectionEndName(const QObject* object)
{
    if (object == nullptr)
        return "null";
    const QMetaObject* meta = object->metaObject();
    return meta != nullptr ? meta->className() : "unknown";
}

namespace detail {
namespace {

/// Splits the argument text of the macro at its top-level commas.
std::vector<std::string> splitArguments(const char* text)
{
    std::vector<std::string> parts(1);
    int depth = 0;
    bool in_string = false;
    for (const char* c = text; *c != '\0'; ++c) {
        if (in_string) {
            if (*c == '\\' && c[1] != '\0')
                parts.back() += *c++;
            else if (*c == '"')
                in_string = false;
        } else if (*c == '"') {
            in_string = true;
        } else if (*c == '(' || *c == '[' || *c == '{') {
            ++depth;
        } else if (*c == ')' || *c == ']' || *c == '}') {
            --depth;
        } else if (*c == ',' && depth == 0) {
            parts.emplace_back();
            continue;
        }
        parts.back() += *c;
    }
    for (std::string& part : parts) {
        const auto first = part.find_first_not_of(' ');
        const auto last = part.find_last_not_of(' ');
        part = first == std::string::npos ? std::string() : part.substr(first, last - first + 1);
    }
    parts.resize(std::max<std::size_t>(parts.size(), 4));
    return parts;
}

} // namespace

void reportFailure(const CallSite& site, bool connect, Form form, const char* sender_class,
                   const char* receiver_class)
{
    const char* name = connect ? "CHECKED_CONNECT" : "CHECKED_DISCONNECT";
    int result = 1;
    switch (form) {
    case Form::BY_STRINGS: {
        const auto parts = splitArguments(site.arguments);
        result = uni::assertFailed("", site.file, site.line, "%s(%s, %s, %s, %s) failed.", name,
                                   parts[0].c_str(), parts[1].c_str(), parts[2].c_str(), parts[3].c_str());
        break;
    }
    case Form::BY_MEMBERS:
        result = uni::assertFailed("", site.file, site.line, "%s from %s to %s failed.", name, sender_class,
                                   receiver_class);
        break;
    case Form::TO_FUNCTOR:
        result = uni::assertFailed("", site.file, site.line, "%s from %s to a non QObject slot failed.", name,
                                   sender_class);
        break;
    }
    uni::detail::assertOutcome(result);
}

} // namespace detail
} // namespace qt_utils
