#pragma once

// Channels and a view-like observer for the tests of the channel list.

#include "qchannel_fakes.h"

#include <qchannel/qchannel.h>
#include <qchannel/qchannel_list_model.h>

#include <ferrin_core/channel.h>
#include <ferrin_core/channel_config_manager.h>
#include <uni_testing/model_tester.h>

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QObject>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_set>

namespace qchannel_list_test {

using ChannelPtr = std::shared_ptr<ferrin::Channel>;
using lum::qchannel::QChannel;
using lum::qchannel::QChannelListModel;

/// A bare channel of the acquisition core: an id, a name and, if asked, dependents.
struct ChannelRecipe
{
    channel_config::ChannelID id;
    std::string name;
    std::unordered_set<std::uint64_t> dependents = {};
    bool internal = false;
    ferrin_config::IfChannelConfigManager* manager = nullptr;
};

inline ChannelPtr makeChannel(const ChannelRecipe& recipe)
{
    ferrin::ChannelSetup setup;
    setup.id = recipe.id;
    setup.time_base = std::make_shared<lum::data::MemoryTimeBase>(10.0, 0.0);
    setup.config_manager = recipe.manager;
    setup.items = std::make_shared<ferrin::ConfigItemStore>();
    setup.items->set("Ferrin/Name", config_items::StringConfigItem(recipe.name));
    setup.items->set("Used", config_items::SingleValueConfigItem<bool>(true));
    setup.dependent_channels = recipe.dependents;
    setup.internal = recipe.internal;
    return std::make_shared<qchannel_test::PreparedChannel<ferrin::Channel>>(
        std::move(setup), std::map<ferrin::Tick, daq::SampleData>{}, recipe.id.toUInt64());
}

inline ChannelPtr makeChannel(std::uint32_t node, std::uint32_t local, const std::string& name)
{
    return makeChannel(ChannelRecipe{channel_config::ChannelID(node, local), name});
}

/// What a view attached to the list believes: its row count, kept from the row and
/// reset signals alone, and how many of each it got.
class ViewCounter
{
public:
    explicit ViewCounter(QAbstractItemModel* model) : m_model(model), rows(model->rowCount())
    {
        QObject::connect(model, &QAbstractItemModel::rowsInserted, &m_context,
                         [this](const QModelIndex&, int first, int last) {
                             rows += last - first + 1;
                             ++row_signals;
                         });
        QObject::connect(model, &QAbstractItemModel::rowsRemoved, &m_context,
                         [this](const QModelIndex&, int first, int last) {
                             rows -= last - first + 1;
                             ++row_signals;
                         });
        QObject::connect(model, &QAbstractItemModel::modelReset, &m_context, [this] {
            rows = m_model->rowCount();
            ++resets;
        });
    }

private:
    QObject m_context;
    QAbstractItemModel* m_model;

public:
    int rows;
    int resets = 0;
    int row_signals = 0;
};

/// Runs the event loop of this thread until @p done or @p timeout_ms pass.
inline bool spinUntil(const std::function<bool()>& done, int timeout_ms = 20000)
{
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > timeout_ms)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

/// Lets the objects given deleteLater go.
inline void flushDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace qchannel_list_test
