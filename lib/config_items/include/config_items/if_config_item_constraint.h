#pragma once

#include <memory>

namespace config_items {

/// What a configuration value may be and how it behaves: options, ranges, editing
/// rules. Constraints are held through std::shared_ptr and compared by class and fields.
class IfConfigItemConstraint
{
public:
    virtual ~IfConfigItemConstraint() = default;
    /// True when @p other is of this class (or derived from it) with the same fields.
    virtual bool equals(const IfConfigItemConstraint& other) const = 0;
    /// A copy of the same class.
    virtual std::shared_ptr<IfConfigItemConstraint> clone() const = 0;

protected:
    IfConfigItemConstraint() = default;
    IfConfigItemConstraint(const IfConfigItemConstraint&) = default;
    IfConfigItemConstraint& operator=(const IfConfigItemConstraint&) = default;
};

using ConstraintPtr = std::shared_ptr<IfConfigItemConstraint>;

namespace detail {
/// equals() for a class whose fields compare with ==: the other one must cast to @p Own.
template <class Own>
bool sameClassEquals(const Own& self, const IfConfigItemConstraint& other)
{
    const auto* that = dynamic_cast<const Own*>(&other);
    return that && self.fields() == that->fields();
}
} // namespace detail

} // namespace config_items
