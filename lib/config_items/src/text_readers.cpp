#include "text_readers.h"

#include "config_item_exception.h"

#include <uni_base/uni_assert.h>

#include <fmt/format.h>

#include <charconv>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace config_items::detail {
namespace {

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isAsciiLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool allDigits(std::string_view text)
{
    if (text.empty())
        return false;
    for (const char c : text)
        if (!isDigit(c))
            return false;
    return true;
}

/// Optional sign, then digits filling the rest: the magnitude and whether it was negative.
std::optional<std::pair<std::uint64_t, bool>> readSignedMagnitude(std::string_view text)
{
    text = trimmed(text);
    bool negative = false;
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    if (!allDigits(text))
        return std::nullopt;
    std::uint64_t magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return std::make_pair(magnitude, negative);
}

/// Reads a run of decimal digits as a non-negative 64-bit number; too long throws.
std::int64_t readDigits(std::string_view digits)
{
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 10);
    if (error != std::errc() || end != digits.data() + digits.size())
        throw boost::bad_rational("bad rational: non-zero singular denominator");
    return value;
}

/// The parts of a rational text, before conversion.
struct RationalText
{
    enum Form
    {
        WHOLE,
        FRACTION,
        DECIMAL
    };
    Form form = WHOLE;
    bool negative = false;
    std::string_view first;  ///< whole number, numerator or integer part (digits only)
    std::string_view second; ///< denominator or fraction part (digits only)
    std::string_view unit;
};

std::optional<RationalText> splitRational(std::string_view text)
{
    RationalText parts;
    std::size_t pos = 0;
    const auto skipSpace = [&] {
        while (pos < text.size() && isSpace(text[pos]))
            ++pos;
    };
    const auto digitRun = [&] {
        const std::size_t start = pos;
        while (pos < text.size() && isDigit(text[pos]))
            ++pos;
        return text.substr(start, pos - start);
    };
    skipSpace();
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-'))
        parts.negative = text[pos++] == '-';
    parts.first = digitRun();
    if (parts.first.empty())
        return std::nullopt;
    if (pos < text.size() && (text[pos] == '/' || text[pos] == '.')) {
        parts.form = text[pos] == '/' ? RationalText::FRACTION : RationalText::DECIMAL;
        ++pos;
        parts.second = digitRun();
        if (parts.second.empty())
            return std::nullopt;
    }
    skipSpace();
    const std::size_t unit_start = pos;
    while (pos < text.size() && isAsciiLetter(text[pos]))
        ++pos;
    parts.unit = text.substr(unit_start, pos - unit_start);
    skipSpace();
    if (pos != text.size())
        return std::nullopt;
    return parts;
}

RationalScalarConfigItem::Rational fromFraction(const RationalText& parts)
{
    std::pair<std::int64_t, std::int64_t> x(readDigits(parts.first), readDigits(parts.second));
    if (!UNI_ASSERT(x.second != 0))
        throw boost::bad_rational("bad rational: zero denominator");
    if (parts.negative)
        x.first = -x.first;
    return RationalScalarConfigItem::Rational(x.first, x.second);
}

RationalScalarConfigItem::Rational fromDecimal(const RationalText& parts)
{
    std::pair<std::string_view, std::string_view> x(parts.first, parts.second);
    const std::int64_t val0 = readDigits(x.first);
    UNI_ASSERT(val0 >= 0);
    if (!UNI_ASSERT(!x.second.empty()))
        throw std::runtime_error("empty fraction part");
    // Trailing zeros change nothing but would overflow the power of ten.
    std::string_view fraction = x.second;
    while (fraction.size() > 1 && fraction.back() == '0')
        fraction.remove_suffix(1);
    if (fraction.size() > static_cast<std::size_t>(std::numeric_limits<std::int64_t>::digits10))
        throw boost::bad_rational("bad rational: non-zero singular denominator");
    const std::int64_t val1 = readDigits(fraction);
    UNI_ASSERT(val1 >= 0);
    std::int64_t scale = 1;
    for (std::size_t i = 0; i < fraction.size(); ++i)
        scale *= 10;
    const std::int64_t common = std::gcd(val1, scale);
    const std::int64_t numerator = val1 / common;
    const std::int64_t denominator = scale / common;
    // val0 + numerator / denominator, exactly; beyond 64 bits it is refused.
    std::int64_t sum = 0;
    if (__builtin_mul_overflow(val0, denominator, &sum) || __builtin_add_overflow(sum, numerator, &sum))
        throw boost::bad_rational("bad rational: non-zero singular denominator");
    return RationalScalarConfigItem::Rational(parts.negative ? -sum : sum, denominator);
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

std::optional<double> readDouble(std::string_view text)
{
    text = trimmed(text);
    if (text.empty())
        return std::nullopt;
    const char last = text.back();
    if (last == 'e' || last == 'E' || last == '+' || last == '-')
        return std::nullopt;
    // from_chars takes a "-" but not a "+"; one sign only.
    if (text.front() == '+') {
        text.remove_prefix(1);
        if (text.empty() || text.front() == '-')
            return std::nullopt;
    }
    double value = 0.0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::general);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<int> readInt32(std::string_view text)
{
    const auto read = readSignedMagnitude(text);
    if (!read)
        return std::nullopt;
    const auto [magnitude, negative] = *read;
    constexpr std::uint64_t max = std::numeric_limits<int>::max();
    if (magnitude > max + (negative ? 1 : 0))
        return std::nullopt;
    const auto wide = static_cast<std::int64_t>(magnitude);
    return static_cast<int>(negative ? -wide : wide);
}

std::optional<unsigned int> readUInt32(std::string_view text)
{
    const auto read = readSignedMagnitude(text);
    if (!read)
        return std::nullopt;
    const auto [magnitude, negative] = *read;
    if (magnitude > std::numeric_limits<unsigned int>::max() || (negative && magnitude != 0))
        return std::nullopt;
    return static_cast<unsigned int>(magnitude);
}

std::vector<std::string> readStringList(const std::string& text)
{
    const auto fail = [&text] {
        return ConfigItemException(fmt::format("Cannot convert '{}' to StringList.", text));
    };
    std::vector<std::string> values;
    std::size_t pos = 0;
    const auto skipSpace = [&] {
        while (pos < text.size() && isSpace(text[pos]))
            ++pos;
    };
    skipSpace();
    if (pos == text.size())
        return values;
    while (true) {
        skipSpace();
        if (pos == text.size())
            throw fail(); // a comma with nothing after it
        std::string value;
        if (text[pos] == '"') {
            ++pos;
            bool closed = false;
            while (pos < text.size()) {
                char c = text[pos++];
                if (c == '"') {
                    closed = true;
                    break;
                }
                if (c == '\\') {
                    if (pos == text.size())
                        break;
                    c = text[pos++];
                }
                value += c;
            }
            if (!closed)
                throw fail();
        } else {
            const std::size_t comma = std::min(text.find(',', pos), text.size());
            value = std::string(trimmed(std::string_view(text).substr(pos, comma - pos)));
            pos = comma;
            if (value.empty())
                throw fail();
        }
        values.push_back(std::move(value));
        skipSpace();
        if (pos == text.size())
            return values;
        if (text[pos] != ',')
            throw fail();
        ++pos;
    }
}

std::vector<TupleValue<double, double>> readPointList(const std::string& text)
{
    const auto fail = [&text] {
        return ConfigItemException(fmt::format("Cannot convert '{}' to PointList.", text));
    };
    const std::string_view view(text);
    std::vector<TupleValue<double, double>> points;
    std::size_t pos = 0;
    const auto skipSpace = [&] {
        while (pos < view.size() && isSpace(view[pos]))
            ++pos;
    };
    // The number up to @p delimiter, which is consumed.
    const auto numberUpTo = [&](char delimiter) {
        const std::size_t end = view.find(delimiter, pos);
        if (end == std::string_view::npos)
            throw fail();
        const auto number = readDouble(view.substr(pos, end - pos));
        if (!number)
            throw fail();
        pos = end + 1;
        return *number;
    };
    skipSpace();
    if (pos == view.size())
        return points;
    while (true) {
        skipSpace();
        if (pos == view.size() || view[pos] != '(')
            throw fail();
        ++pos;
        TupleValue<double, double> point;
        point.first = numberUpTo(',');
        point.second = numberUpTo(')');
        points.push_back(point);
        skipSpace();
        if (pos == view.size())
            return points;
        if (view[pos] != ',')
            throw fail();
        ++pos;
    }
}

bool hasFractionForm(const std::string& text)
{
    const auto parts = splitRational(text);
    return parts && parts->form == RationalText::FRACTION;
}

RationalScalarConfigItem readRationalScalar(const std::string& text, bool allow_floating_point)
{
    const auto parts = splitRational(text);
    if (!parts)
        throw std::runtime_error("Unable to initialize RationalScalarConfigItem with " + text);
    if (parts->form != RationalText::FRACTION && !allow_floating_point)
        throw std::domain_error("Conversion of floating point to rational values is disabled.");
    RationalScalarConfigItem::Rational value;
    switch (parts->form) {
    case RationalText::WHOLE: {
        const std::int64_t whole = readDigits(parts->first);
        value = parts->negative ? -whole : whole;
        break;
    }
    case RationalText::FRACTION:
        value = fromFraction(*parts);
        break;
    case RationalText::DECIMAL:
        value = fromDecimal(*parts);
        break;
    }
    return RationalScalarConfigItem(value, std::string(parts->unit));
}

} // namespace config_items::detail
