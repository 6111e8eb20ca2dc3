#pragma once

#include <exception>
#include <string>

namespace config_items {

/// Raised while building an item from text; the parser catches it, so it never
/// leaves this library.
class ConfigItemException : public std::exception
{
public:
    explicit ConfigItemException(std::string message) : m_message(std::move(message)) {}
    const char* what() const noexcept override { return m_message.c_str(); }

private:
    std::string m_message;
};

} // namespace config_items
