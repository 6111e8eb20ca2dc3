#include <ferrin_core/config_item_store.h>

namespace ferrin {

const ConfigItemStore::Entry* ConfigItemStore::find(const std::string& key) const
{
    const auto it = m_index.find(key);
    return it == m_index.end() ? nullptr : &m_entries[it->second];
}

ConfigItemStore::Entry* ConfigItemStore::find(const std::string& key)
{
    const auto it = m_index.find(key);
    return it == m_index.end() ? nullptr : &m_entries[it->second];
}

std::optional<ConfigItem> ConfigItemStore::get(const std::string& key) const
{
    std::lock_guard lock(m_mutex);
    if (const Entry* entry = find(key))
        return entry->item;
    return std::nullopt;
}

bool ConfigItemStore::has(const std::string& key) const
{
    std::lock_guard lock(m_mutex);
    return m_index.count(key) != 0;
}

std::vector<std::string> ConfigItemStore::keys() const
{
    std::lock_guard lock(m_mutex);
    std::vector<std::string> result;
    result.reserve(m_entries.size());
    for (const Entry& entry : m_entries)
        result.push_back(entry.key);
    return result;
}

void ConfigItemStore::set(const std::string& key, ConfigItem item)
{
    std::lock_guard lock(m_mutex);
    if (Entry* entry = find(key)) {
        entry->item = std::move(item);
        return;
    }
    m_index.emplace(key, m_entries.size());
    m_entries.push_back(Entry{key, std::move(item), {}});
}

bool ConfigItemStore::replace(const std::string& key, ConfigItem item)
{
    std::lock_guard lock(m_mutex);
    Entry* entry = find(key);
    if (!entry)
        return false;
    entry->item = std::move(item);
    return true;
}

bool ConfigItemStore::remove(const std::string& key)
{
    std::lock_guard lock(m_mutex);
    const auto it = m_index.find(key);
    if (it == m_index.end())
        return false;
    m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(it->second));
    m_index.clear();
    for (std::size_t i = 0; i < m_entries.size(); ++i)
        m_index.emplace(m_entries[i].key, i);
    return true;
}

ConstraintList ConfigItemStore::getConstraints(const std::string& key) const
{
    std::lock_guard lock(m_mutex);
    if (const Entry* entry = find(key))
        return entry->constraints;
    return {};
}

void ConfigItemStore::setConstraints(const std::string& key, ConstraintList constraints)
{
    std::lock_guard lock(m_mutex);
    if (Entry* entry = find(key))
        entry->constraints = std::move(constraints);
}

std::vector<MeasurementChainElement> ConfigItemStore::getMeasurementChain() const
{
    std::lock_guard lock(m_mutex);
    return m_measurement_chain;
}

void ConfigItemStore::setMeasurementChain(std::vector<MeasurementChainElement> chain)
{
    std::lock_guard lock(m_mutex);
    m_measurement_chain = std::move(chain);
}

} // namespace ferrin
