#include <instrument_interface/property_change_forwarder.h>

#include <instrument_interface/detail/property_change_augmenter.h>

#include <uni_base/uni_assert.h>

#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>

namespace im {

namespace {

int signalIndexOf(const QObject* object, const std::string& signature)
{
    return object != nullptr ? object->metaObject()->indexOfSignal(signature.c_str()) : -1;
}

} // namespace

PropertyChangeForwarder::PropertyChangeForwarder(QObject* parent, const char* signal)
    : QObject(parent),
      m_signal_signature(QMetaObject::normalizedSignature(signal != nullptr ? signal : "").toStdString()),
      m_signal_index(signalIndexOf(parent, m_signal_signature))
{
    UNI_ASSERT(m_signal_index != -1);
}

PropertyChangeForwarder::~PropertyChangeForwarder()
{
    qDeleteAll(m_augmenters);
}

void PropertyChangeForwarder::addProperty(const char* name, bool propagate)
{
    QObject* owner = parent();
    if (owner == nullptr) // told when this forwarder was made
        return;
    const QMetaObject* meta = owner->metaObject();
    if (name == nullptr) {
        UNI_FAIL("PropertyChangeForwarder::addProperty: property %s not found in instrument %s", "(null)",
                 meta->className());
        return;
    }
    const int property_index = meta->indexOfProperty(name);
    const QMetaProperty property = property_index != -1 ? meta->property(property_index) : QMetaProperty();
    if (!property.hasNotifySignal()) {
        UNI_FAIL("PropertyChangeForwarder::addProperty: property %s not found in instrument %s", name,
                 meta->className());
        return;
    }

    auto* f = new detail::PropertyChangeAugmenter(
        owner, m_signal_signature, propagate ? QString::fromUtf8(name) : QString::fromLatin1(NO_PROPAGATE),
        owner);
    if (!f->isValid()) {
        // Already reported; an augmenter without a signal to call is of no use.
        delete f;
        return;
    }
    m_augmenters.append(f);

    const QMetaMethod update_slot = f->metaObject()->method(f->metaObject()->indexOfSlot("trigger()"));
    if (!UNI_ASSERT(update_slot.isValid()))
        return;
    const QMetaMethod signal = property.notifySignal();
    UNI_ASSERT(connect(parent(), signal, f, update_slot));
}

void PropertyChangeForwarder::addSource(QObject* source, const char* path)
{
    // The owner as its own source would call itself without end.
    if (!UNI_ASSERT(source != nullptr) || !UNI_ASSERT(source != parent()))
        return;
    const bool known = m_sources.contains(source);
    m_sources.insert(source, QString::fromUtf8(path != nullptr ? path : ""));

    const int signal_index = source->metaObject()->indexOfSignal(m_signal_signature.c_str());
    if (!UNI_ASSERT_MSG(signal_index != -1, "PropertyChangeForwarder: Source signal %s does not exist.",
                        m_signal_signature.c_str()))
        return;
    const QMetaMethod changed_signal = source->metaObject()->method(signal_index);
    if (!UNI_ASSERT(changed_signal.isValid()))
        return;
    const QMetaMethod change_slot =
        metaObject()->method(metaObject()->indexOfSlot("sourceChanged(QObject*,QString)"));
    if (!UNI_ASSERT(change_slot.isValid()))
        return;
    // A source added again keeps one connection: each change is told once, under the new path.
    if (known)
        disconnect(source, changed_signal, this, change_slot);
    UNI_ASSERT(connect(source, changed_signal, this, change_slot));
}

void PropertyChangeForwarder::sourceChanged(QObject* source, QString name)
{
    const auto it = m_sources.constFind(source);
    if (it == m_sources.constEnd()) {
        UNI_FAIL("PropertyChangeForwarder::sourceChanged: source object not registered");
        return;
    }
    const QString property_path = it.value() + QLatin1String(PATH_SEPARATOR) + name;

    QObject* owner = parent();
    if (owner == nullptr)
        return;
    const QMetaMethod signal = owner->metaObject()->method(m_signal_index);
    if (!signal.isValid())
        return;
    // clang-format off
    UNI_ASSERT(signal.invoke(owner, QArgument<QObject* >("QObject*", owner), QArgument<QString >("QString", property_path)));
    // clang-format on
}

} // namespace im
