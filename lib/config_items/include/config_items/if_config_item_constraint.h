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

/// Gives constraint class @p Own, derived from @p Base, its equals() and clone(): the
/// other constraint must cast to @p Own, and the fields() of both must compare equal.
template <class Own, class Base = IfConfigItemConstraint>
class ConstraintBase : public Base
{
public:
    using Base::Base;

    bool equals(const IfConfigItemConstraint& other) const override
    {
        const auto* that = dynamic_cast<const Own*>(&other);
        return that && static_cast<const Own&>(*this).fields() == that->fields();
    }

    std::shared_ptr<IfConfigItemConstraint> clone() const override
    {
        return std::make_shared<Own>(static_cast<const Own&>(*this));
    }
};

} // namespace config_items
