#include <qt_utils/qdata_container.h>
#include <qt_utils/qdouble_values_reducer.h>
#include <qt_utils/qqml_future.h>

#include <gtest/gtest.h>

#include <QSignalSpy>

#include <cmath>
#include <limits>

namespace {

TEST(QQMLFuture, SetValueStoresAndEmitsEachTime)
{
    qt_utils::QQMLFuture future;
    QSignalSpy changed(&future, &qt_utils::QQMLFuture::valueChanged);
    QSignalSpy canceled(&future, &qt_utils::QQMLFuture::canceled);
    ASSERT_TRUE(changed.isValid() && canceled.isValid());
    EXPECT_FALSE(future.getValue().isValid());
    future.setValue(42);
    future.setValue(42);
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(future.getValue().toInt(), 42);
    EXPECT_EQ(future.property("value").toInt(), 42);
    future.cancel();
    EXPECT_EQ(canceled.count(), 1);
    EXPECT_EQ(future.getValue().toInt(), 42) << "cancel keeps the value";
}

TEST(QDataContainer, SettingDataEmitsDataThenCount)
{
    qt_utils::QDataContainer container;
    QSignalSpy data(&container, &qt_utils::QDataContainerBase::dataChanged);
    QSignalSpy count(&container, &qt_utils::QDataContainerBase::countChanged);
    ASSERT_TRUE(data.isValid() && count.isValid());
    container.setData({1.0, 2.0});
    EXPECT_EQ(data.count(), 1);
    ASSERT_EQ(count.count(), 1);
    EXPECT_EQ(count.at(0).at(0).toInt(), 2);
    EXPECT_EQ(container.getCount(), 2);
    EXPECT_EQ(container.getData(), QVector<double>({1.0, 2.0}));

    container.setData({3.0, 4.0});
    EXPECT_EQ(data.count(), 2);
    EXPECT_EQ(count.count(), 1) << "same size, no count change";
    container.setData({3.0, 4.0});
    EXPECT_EQ(data.count(), 2) << "same data, no signal";
}

TEST(QDoubleValuesReducer, MinAndMaxFollowTheCurrentValues)
{
    qt_utils::QDoubleValuesReducer reducer;
    QSignalSpy min(&reducer, &qt_utils::QDoubleValuesReducer::minChanged);
    QSignalSpy max(&reducer, &qt_utils::QDoubleValuesReducer::maxChanged);
    ASSERT_TRUE(min.isValid() && max.isValid());
    EXPECT_TRUE(std::isnan(reducer.min()));
    EXPECT_TRUE(std::isnan(reducer.max()));

    reducer.setValue(1, 5.0);
    EXPECT_EQ(reducer.min(), 5.0);
    EXPECT_EQ(reducer.max(), 5.0);
    reducer.setValue(2, -3.0);
    reducer.setValue(3, 9.0);
    EXPECT_EQ(reducer.min(), -3.0);
    EXPECT_EQ(reducer.max(), 9.0);
    EXPECT_EQ(min.count(), 2);
    EXPECT_EQ(max.count(), 2);

    // Replacing the value of a key drops the old one: the minimum goes back up.
    reducer.setValue(2, 7.0);
    EXPECT_EQ(reducer.min(), 5.0);
    EXPECT_EQ(min.count(), 3);
    EXPECT_EQ(max.count(), 2);

    reducer.setValue(4, std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(reducer.min(), 5.0) << "NaN takes no part";
    EXPECT_EQ(min.count(), 3);

    reducer.removeValue(3);
    EXPECT_EQ(reducer.max(), 7.0);

    reducer.clear();
    EXPECT_TRUE(std::isnan(reducer.min()));
    EXPECT_TRUE(std::isnan(reducer.max()));
    EXPECT_EQ(min.count(), 4);
    EXPECT_EQ(max.count(), 4);
}

TEST(QDoubleValuesReducer, EqualValuesUnderTwoKeysCountTwice)
{
    qt_utils::QDoubleValuesReducer reducer;
    reducer.setValue(1, 2.0);
    reducer.setValue(2, 2.0);
    reducer.setValue(3, 8.0);
    reducer.setValue(1, 8.0);
    EXPECT_EQ(reducer.min(), 2.0) << "key 2 still holds 2.0";
}

} // namespace
