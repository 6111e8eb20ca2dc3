#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace units::simple {

/// A ternary search tree mapping whole byte strings to values. A lookup is one walk
/// from the first byte; a key that is only a prefix of the text, or a text that is
/// only a prefix of a key, finds nothing. Nodes live in one vector, linked by index.
template <class Value>
class TernarySearchTree
{
public:
    /// Adds @p key; an empty key or one already present is left alone (the first value stays).
    /// @return whether the key was added
    bool insert(std::string_view key, Value value)
    {
        if (key.empty())
            return false;
        // Links are re-read through the vector each step: adding a node may move the others.
        std::int32_t parent = NONE;
        std::int32_t Node::*field = nullptr;
        std::int32_t node = NONE;
        for (std::size_t i = 0; i < key.size();) {
            const char c = key[i];
            std::int32_t& link = parent == NONE ? m_root : m_nodes[static_cast<std::size_t>(parent)].*field;
            node = link;
            if (node == NONE) {
                node = static_cast<std::int32_t>(m_nodes.size());
                link = node;
                m_nodes.push_back(Node{c, NONE, NONE, NONE, std::nullopt});
            }
            const Node& n = m_nodes[static_cast<std::size_t>(node)];
            parent = node;
            if (c < n.c) {
                field = &Node::lo;
            } else if (c > n.c) {
                field = &Node::hi;
            } else {
                field = &Node::eq;
                ++i;
            }
        }
        auto& slot = m_nodes[static_cast<std::size_t>(node)].value;
        if (slot)
            return false;
        slot = std::move(value);
        ++m_size;
        return true;
    }

    /// The value stored under exactly @p key, or null.
    const Value* find(std::string_view key) const
    {
        if (key.empty())
            return nullptr;
        std::int32_t node = m_root;
        std::size_t i = 0;
        while (node != NONE) {
            const Node& n = m_nodes[static_cast<std::size_t>(node)];
            const char c = key[i];
            if (c < n.c) {
                node = n.lo;
            } else if (c > n.c) {
                node = n.hi;
            } else {
                if (++i == key.size())
                    return n.value ? &*n.value : nullptr;
                node = n.eq;
            }
        }
        return nullptr;
    }

    std::size_t size() const { return m_size; }

private:
    static constexpr std::int32_t NONE = -1;

    struct Node
    {
        char c;
        std::int32_t lo;
        std::int32_t eq;
        std::int32_t hi;
        std::optional<Value> value;
    };

    std::vector<Node> m_nodes;
    std::int32_t m_root = NONE;
    std::size_t m_size = 0;
};

} // namespace units::simple
