#pragma once

#include <config_items/if_config_item_constraint.h>

#include <cstdint>
#include <string>
#include <tuple>

namespace config_items {

/// A yes/no property of an item. Subclasses name the property and keep their class on clone().
class BooleanConstraint : public ConstraintBase<BooleanConstraint>
{
public:
    explicit BooleanConstraint(bool value = false) : m_value(value) {}
    bool getValue() const { return m_value; }
    bool fields() const { return m_value; }

private:
    bool m_value;
};

/// A free-form hint to the editor of the item.
class ItemHintConstraint : public ConstraintBase<ItemHintConstraint>
{
public:
    explicit ItemHintConstraint(std::string hint = {}) : m_hint(std::move(hint)) {}
    const std::string& getHint() const { return m_hint; }
    const std::string& fields() const { return m_hint; }

private:
    std::string m_hint;
};

/// Inclusive bounds on a count, shared by the length and element-count constraints.
template <class Own>
class CountBoundsConstraint : public ConstraintBase<Own>
{
public:
    CountBoundsConstraint(std::uint32_t minimum, std::uint32_t maximum)
        : m_minimum(minimum), m_maximum(maximum)
    {}
    std::uint32_t getMinimum() const { return m_minimum; }
    std::uint32_t getMaximum() const { return m_maximum; }
    std::tuple<std::uint32_t, std::uint32_t> fields() const { return {m_minimum, m_maximum}; }

private:
    std::uint32_t m_minimum;
    std::uint32_t m_maximum;
};

/// Bounds on the length of a string value, in bytes.
class StringLengthConstraint : public CountBoundsConstraint<StringLengthConstraint>
{
public:
    explicit StringLengthConstraint(std::uint32_t minimum = 0, std::uint32_t maximum = UINT32_MAX)
        : CountBoundsConstraint(minimum, maximum)
    {}
};

/// Bounds on the number of elements of a list value.
class ListElementCountConstraint : public CountBoundsConstraint<ListElementCountConstraint>
{
public:
    explicit ListElementCountConstraint(std::uint32_t minimum = 0, std::uint32_t maximum = UINT32_MAX)
        : CountBoundsConstraint(minimum, maximum)
    {}
};

/// Who gets to see the item.
class VisibilityConstraint : public ConstraintBase<VisibilityConstraint>
{
public:
    enum Visibility : std::uint8_t
    {
        NONE = 0,
        PUBLIC = 1
    };

    explicit VisibilityConstraint(Visibility visibility = PUBLIC) : m_visibility(visibility) {}
    Visibility getVisibility() const { return m_visibility; }
    Visibility fields() const { return m_visibility; }

private:
    Visibility m_visibility;
};

/// A regular expression that a string value must match.
class RegularExpressionConstraint : public ConstraintBase<RegularExpressionConstraint>
{
public:
    explicit RegularExpressionConstraint(std::string expression = {}) : m_expression(std::move(expression)) {}
    const std::string& getExpression() const { return m_expression; }
    const std::string& fields() const { return m_expression; }

private:
    std::string m_expression;
};

/// Whether the value lives only for the session and is not stored with the setup.
class TransientConstraint : public ConstraintBase<TransientConstraint>
{
public:
    explicit TransientConstraint(bool transient = true) : m_transient(transient) {}
    bool isTransient() const { return m_transient; }
    bool fields() const { return m_transient; }

private:
    bool m_transient;
};

/// A named format that a string value follows (for example an IP address).
class StringFormatConstraint : public ConstraintBase<StringFormatConstraint>
{
public:
    explicit StringFormatConstraint(std::string format = {}) : m_format(std::move(format)) {}
    const std::string& getFormat() const { return m_format; }
    const std::string& fields() const { return m_format; }

private:
    std::string m_format;
};

} // namespace config_items
