#pragma once

#include <QString>
#include <QVariant>

namespace ferrin_config {
class QCellEditorConstraints;
}

namespace lum {

/// Anything whose configuration items a view edits by key: a channel, a stage of its
/// measurement chain.
class IfConfigurableObject
{
public:
    virtual QVariant getConfigItem(const QString& key) const = 0;
    virtual bool setConfigItem(const QString& key, const QVariant& value) = 0;
    virtual bool hasConfigItem(const QString& key) const = 0;
    /// The item's text as a cell shows it.
    virtual QString getStringRepresentation(const QString& key) const = 0;
    /// What the editor of the key's cell must know; null when there is nothing to ask.
    virtual ferrin_config::QCellEditorConstraints* getPropertyConstraints(const QString& key) = 0;

    // Last, so that the operations above keep their places in the table of virtuals.
    virtual ~IfConfigurableObject() = default;
};

} // namespace lum
