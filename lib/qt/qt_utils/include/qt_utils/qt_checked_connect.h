#pragma once

#include <QMetaObject>
#include <QObject>

#include <tuple>
#include <type_traits>
#include <utility>

#include <uni_base/uni_assert.h>

/// Signal connections that cannot fail in silence. Each form calls QObject::connect
/// (or disconnect) with the given arguments, reports a failure to the assertion
/// routine (no expression text, a message naming the ends) and hands the result back:
///
///   CHECKED_CONNECT(sender, SIGNAL(changed()), receiver, SLOT(update()));
///   CHECKED_CONNECT(sender, &Sender::changed, receiver, &Receiver::update, Qt::QueuedConnection);
///   CHECKED_CONNECT(sender, &Sender::changed, context, [] { ... });
///   CHECKED_DISCONNECT(sender, &Sender::changed, receiver, &Receiver::update);
#define CHECKED_CONNECT(...)                                                                                 \
    ::qt_utils::detail::checkedConnect(::qt_utils::detail::CallSite{__FILE__, __LINE__, #__VA_ARGS__},       \
                                       __VA_ARGS__)

#define CHECKED_DISCONNECT(...)                                                                              \
    ::qt_utils::detail::checkedDisconnect(::qt_utils::detail::CallSite{__FILE__, __LINE__, #__VA_ARGS__},    \
                                          __VA_ARGS__)

namespace qt_utils {

/// The class name of @p object from its meta object: "null" for a null pointer,
/// "unknown" when there is no meta object.
const char* connectionEndName(const QObject* object);

namespace detail {

/// Where a checked connection was written, with the text of its arguments.
struct CallSite
{
    const char* file;
    int line;
    const char* arguments;
};

enum class Form
{
    BY_STRINGS,
    BY_MEMBERS,
    TO_FUNCTOR
};

void reportFailure(const CallSite& site, bool connect, Form form, const char* sender_class,
                   const char* receiver_class);

template <typename T>
const char* endName(T* object)
{
    if constexpr (std::is_base_of_v<QObject, std::remove_cv_t<T>>)
        return connectionEndName(object);
    else
        return object == nullptr ? "null" : "unknown";
}

inline const char* endName(std::nullptr_t)
{
    return "null";
}

template <typename T>
using Decayed = std::decay_t<T>;

/// By strings: the signal is a SIGNAL() text.
inline QMetaObject::Connection checkedConnect(const CallSite& site, const QObject* sender, const char* signal,
                                              const QObject* receiver, const char* method,
                                              Qt::ConnectionType type = Qt::AutoConnection)
{
    QMetaObject::Connection connection = QObject::connect(sender, signal, receiver, method, type);
    if (!connection)
        reportFailure(site, true, Form::BY_STRINGS, nullptr, nullptr);
    return connection;
}

inline bool checkedDisconnect(const CallSite& site, const QObject* sender, const char* signal,
                              const QObject* receiver, const char* method)
{
    const bool done = QObject::disconnect(sender, signal, receiver, method);
    if (!done)
        reportFailure(site, false, Form::BY_STRINGS, nullptr, nullptr);
    return done;
}

/// By member pointers, or to a functor (with or without a context object).
template <typename Sender, typename Signal, typename... Rest,
          typename = std::enable_if_t<std::is_member_function_pointer_v<Signal>>>
QMetaObject::Connection checkedConnect(const CallSite& site, Sender* sender, Signal signal, Rest&&... rest)
{
    QMetaObject::Connection connection = QObject::connect(sender, signal, std::forward<Rest>(rest)...);
    if (!connection) {
        if constexpr (sizeof...(Rest) >= 2) {
            const auto ends = std::forward_as_tuple(rest...);
            using Receiver = Decayed<std::tuple_element_t<0, std::tuple<Rest...>>>;
            using Slot = Decayed<std::tuple_element_t<1, std::tuple<Rest...>>>;
            if constexpr (std::is_member_function_pointer_v<Slot> &&
                          (std::is_pointer_v<Receiver> || std::is_null_pointer_v<Receiver>)) {
                reportFailure(site, true, Form::BY_MEMBERS, endName(sender), endName(std::get<0>(ends)));
                return connection;
            }
        }
        reportFailure(site, true, Form::TO_FUNCTOR, endName(sender), nullptr);
    }
    return connection;
}

template <typename Sender, typename Signal, typename Receiver, typename Slot,
          typename = std::enable_if_t<std::is_member_function_pointer_v<Signal>>>
bool checkedDisconnect(const CallSite& site, Sender* sender, Signal signal, Receiver* receiver, Slot slot)
{
    const bool done = QObject::disconnect(sender, signal, receiver, slot);
    if (!done)
        reportFailure(site, false, Form::BY_MEMBERS, endName(sender), endName(receiver));
    return done;
}

} // namespace detail
} // namespace qt_utils
