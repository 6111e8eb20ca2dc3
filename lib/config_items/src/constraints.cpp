#include <config_items/basic_constraints.h>

namespace config_items {

namespace {
template <class Own>
std::shared_ptr<IfConfigItemConstraint> cloneOf(const Own& self)
{
    return std::make_shared<Own>(self);
}
} // namespace

bool BooleanConstraint::equals(const IfConfigItemConstraint& other) const
{
    return detail::sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> BooleanConstraint::clone() const
{
    return cloneOf(*this);
}

bool ItemHintConstraint::equals(const IfConfigItemConstraint& other) const
{
    return detail::sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> ItemHintConstraint::clone() const
{
    return cloneOf(*this);
}

bool StringLengthConstraint::equals(const IfConfigItemConstraint& other) const
{
    return detail::sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> StringLengthConstraint::clone() const
{
    return cloneOf(*this);
}

bool ListElementCountConstraint::equals(const IfConfigItemConstraint& other) const
{
    return detail::sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> ListElementCountConstraint::clone() const
{
    return cloneOf(*this);
}

bool VisibilityConstraint::equals(const IfConfigItemConstraint& other) const
{
    return detail::sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> VisibilityConstraint::clone() const
{
    return cloneOf(*this);
}

bool RegularExpressionConstraint::equals(const IfConfigItemConstraint& other) const
{
    return detail::sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> RegularExpressionConstraint::clone() const
{
    return cloneOf(*this);
}

bool TransientConstraint::equals(const IfConfigItemConstraint& other) const
{
    return detail::sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> TransientConstraint::clone() const
{
    return cloneOf(*this);
}

bool StringFormatConstraint::equals(const IfConfigItemConstraint& other) const
{
    return detail::sameClassEquals(*this, other);
}

std::shared_ptr<IfConfigItemConstraint> StringFormatConstraint::clone() const
{
    return cloneOf(*this);
}

} // namespace config_items
