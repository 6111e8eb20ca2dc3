#pragma once

#include <uni_base/type_list.h>

namespace config_items {

/// A visitor with one pure virtual visit() per type of @p List, so that every visitor
/// states what it does with each kind. The base with the last type comes first, so the
/// visits follow the destructor in the reverse order of the list.
template <class List>
class AbstractVisitor;

template <>
class AbstractVisitor<uni::TypeList<>>
{
public:
    virtual ~AbstractVisitor() = default;
};

template <class T>
class AbstractVisitor<uni::TypeList<T>> : public AbstractVisitor<uni::TypeList<>>
{
public:
    virtual void visit(const T& item) = 0;
};

template <class T, class Next, class... Rest>
class AbstractVisitor<uni::TypeList<T, Next, Rest...>> : public AbstractVisitor<uni::TypeList<Next, Rest...>>
{
public:
    using AbstractVisitor<uni::TypeList<Next, Rest...>>::visit;
    virtual void visit(const T& item) = 0;
};

namespace detail {
template <class T, class Visitor, class Root>
bool visitAs(Visitor& visitor, const Root& item)
{
    const auto* typed = dynamic_cast<const T*>(&item);
    if (!typed)
        return false;
    visitor.visit(*typed);
    return true;
}
} // namespace detail

/// Shows @p item to @p visitor as the first type of the list it is an instance of, so
/// list a derived class before its base. @return false for a type the list lacks.
template <class Root, class... Ts>
bool dispatchVisit(AbstractVisitor<uni::TypeList<Ts...>>& visitor, const Root& item)
{
    return (detail::visitAs<Ts>(visitor, item) || ...);
}

} // namespace config_items
