#pragma once

#include <QObject>
#include <QString>

#include <string>

namespace im::detail {

/// Turns one argument-less call (a property's notify signal) into a call of the
/// target signal of @p source with the source and the property name. A child of the
/// owner, made and deleted by PropertyChangeForwarder.
class PropertyChangeAugmenter : public QObject
{
    Q_OBJECT

public:
    /// @p signal_signature is the normalised signature of the target signal of @p source;
    /// a missing signal is reported to the assertion routine and leaves the augmenter invalid.
    PropertyChangeAugmenter(QObject* source, const std::string& signal_signature, QString property_name,
                            QObject* parent);

    /// Whether the target signal was found, so that triggering can call it.
    bool isValid() const { return m_signal_index != -1; }
    QObject* source() const { return m_source; }
    const QString& propertyName() const { return m_property_name; }

public Q_SLOTS:
    void trigger();

private:
    QObject* m_source;
    int m_signal_index;
    QString m_property_name;
};

} // namespace im::detail
