#pragma once

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

#include <string>

namespace im {

namespace detail {
class PropertyChangeAugmenter;
}

/// Builds one "something changed" signal of its parent, the owner, from the notify
/// signals of the owner's properties and from the same signal of child objects, so
/// that no setter needs code of its own. The owner declares the target signal, for
/// example "settingChanged(QObject*,QString)", and it is always called with the owner
/// and the path of what changed: a property name, or a source's path, ".", and the
/// name the source told ("channels.speed.minValue"). A change that is not to be told
/// further as a setting carries "[NO_PROPAGATE]" in place of the name.
///
/// All connections are direct, in the owner's thread. Mistakes of use (a missing
/// signal, an unknown property) go to the assertion routine; what they concern is
/// then simply not forwarded.
class PropertyChangeForwarder : public QObject
{
    Q_OBJECT

public:
    /// Separator of the parts of a path.
    static constexpr const char* PATH_SEPARATOR = ".";
    /// Name told in place of a property whose change is not a setting.
    static constexpr const char* NO_PROPAGATE = "[NO_PROPAGATE]";

    /// @p parent is the owner and must declare @p signal (a signature such as
    /// "settingChanged(QObject*,QString)"; it is normalised).
    PropertyChangeForwarder(QObject* parent, const char* signal);
    ~PropertyChangeForwarder() override;

    /// Forwards each emission of the notify signal of the owner's property @p name,
    /// under that name, or under "[NO_PROPAGATE]" when @p propagate is false.
    void addProperty(const char* name, bool propagate = true);

    /// Forwards the target signal of @p source (not owned) with @p path in front of
    /// what it tells. Adding a source again only changes its path.
    void addSource(QObject* source, const char* path);

    /// Normalised signature of the target signal.
    const std::string& signalSignature() const { return m_signal_signature; }

protected Q_SLOTS:
    void sourceChanged(QObject* source, QString name);

private:
    std::string m_signal_signature;
    int m_signal_index;
    QList<detail::PropertyChangeAugmenter*> m_augmenters;
    QMap<QObject*, QString> m_sources;
};

} // namespace im
