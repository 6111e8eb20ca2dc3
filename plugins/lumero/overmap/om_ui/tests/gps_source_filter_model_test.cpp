#include "om_ui_test_support.h"

#include <om_ui/gps_source_filter_model.h>

#include <uni_testing/model_tester.h>

#include <gtest/gtest.h>

namespace {

TEST(GPSSourceFilterModel, OffersTheScalarChannelsInListOrder)
{
    om_ui_test::ChannelList channels;
    overmap_ui::GPSSourceFilterModel sources;
    uni_testing::attachModelTester(&sources);
    sources.setSourceModel(&channels.model());
    auto* latitude = channels.add(om_ui_test::makeScalar(10.0, {48.2}, "Latitude"));
    channels.add(om_ui_test::makeNonScalar("Spectrum"));
    auto* longitude = channels.add(om_ui_test::makeScalar(10.0, {11.6}, "Longitude"));
    ASSERT_EQ(sources.rowCount(), 2);
    EXPECT_EQ(sources.index(0, 0).data(QObjectListModel::OBJECT_ROLE).value<QObject*>(), latitude);
    EXPECT_EQ(sources.index(1, 0).data(QObjectListModel::OBJECT_ROLE).value<QObject*>(), longitude);
    channels.model().removeChannel(latitude);
    delete latitude;
    EXPECT_EQ(sources.rowCount(), 1);
}

} // namespace
