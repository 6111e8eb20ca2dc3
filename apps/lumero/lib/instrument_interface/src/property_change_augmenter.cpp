#include <instrument_interface/detail/property_change_augmenter.h>

#include <uni_base/uni_assert.h>

#include <QMetaMethod>
#include <QMetaObject>

#include <utility>

namespace im::detail {

PropertyChangeAugmenter::PropertyChangeAugmenter(QObject* source, const std::string& signal_signature,
                                                 QString property_name, QObject* parent)
    : QObject(parent), m_source(source),
      m_signal_index(source != nullptr ? source->metaObject()->indexOfSignal(signal_signature.c_str()) : -1),
      m_property_name(std::move(property_name))
{
    UNI_ASSERT_MSG(m_signal_index != -1, "PropertyChangeAugmenter: Target signal %s does not exist.",
                   signal_signature.c_str());
}

void PropertyChangeAugmenter::trigger()
{
    if (m_source == nullptr)
        return;
    const QMetaMethod signal = m_source->metaObject()->method(m_signal_index);
    if (!signal.isValid())
        return;
    // clang-format off
    UNI_ASSERT(signal.invoke(m_source, QArgument<QObject* >("QObject*", m_source), QArgument<QString >("QString", m_property_name)));
    // clang-format on
}

} // namespace im::detail
