#include <channel_config/config_constraints_visitor.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <functional>

using namespace channel_config;
using namespace config_items;

namespace {

ConfigConstraints reduce(const std::vector<ConstraintPtr>& constraints)
{
    ConfigConstraints result;
    ConfigConstraintsVisitor visitor(&result);
    visitor.visitAll(constraints);
    return result;
}

struct OneOnly
{
    const char* name;
    std::function<ConstraintPtr(bool)> make;
    const char* assertion;
    std::function<std::optional<bool>(const ConfigConstraints&)> stored;
};

template <class C, class Member>
OneOnly oneOnly(const char* name, Member member, const char* assertion)
{
    return OneOnly{name, [](bool value) -> ConstraintPtr { return std::make_shared<C>(value); }, assertion,
                   [member](const ConfigConstraints& c) -> std::optional<bool> {
                       const auto& slot = c.*member;
                       if (!slot)
                           return std::nullopt;
                       return slot->getValue();
                   }};
}

void PrintTo(const OneOnly& o, std::ostream* os)
{
    *os << o.name;
}

class OneOnlyConstraints : public ::testing::TestWithParam<OneOnly>
{};

} // namespace

TEST_P(OneOnlyConstraints, StoredOnceAndASecondOneAssertsAndWins)
{
    const OneOnly& kind = GetParam();
    const ConfigConstraints single = reduce({kind.make(true)});
    EXPECT_EQ(kind.stored(single), std::optional<bool>(true));

    uni_testing::AssertCapture capture;
    const ConfigConstraints twice = reduce({kind.make(true), kind.make(false)});
    EXPECT_TRUE(capture.fired(kind.assertion));
    EXPECT_EQ(capture.size(), 1u);
    EXPECT_EQ(kind.stored(twice), std::optional<bool>(false));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, OneOnlyConstraints,
    ::testing::Values(
        oneOnly<ReadOnlyConstraint>("ReadOnly", &ConfigConstraints::m_read_only,
                                    "!(m_config_constraints->m_read_only)"),
        oneOnly<DerivedValueConstraint>("DerivedValue", &ConfigConstraints::m_derived_value,
                                        "!(m_config_constraints->m_derived_value)"),
        oneOnly<ConfigurableDuringAcquisitionConstraint>(
            "ConfigurableDuringAcquisition", &ConfigConstraints::m_configurable_during_acqusition,
            "!(m_config_constraints->m_configurable_during_acqusition)"),
        oneOnly<FullyIndependentSampleRateConstraint>(
            "FullyIndependentSampleRate", &ConfigConstraints::m_fully_indepentend_sample_rate,
            "!(m_config_constraints->m_fully_indepentend_sample_rate)"),
        oneOnly<IndependentConfigItemConstraint>("IndependentConfigItem",
                                                 &ConfigConstraints::m_independent_cfg_item,
                                                 "!(m_config_constraints->m_independent_cfg_item)")),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ConfigConstraintsVisitor, SecondVisibilityAssertsAndWins)
{
    uni_testing::AssertCapture capture;
    const ConfigConstraints result =
        reduce({std::make_shared<VisibilityConstraint>(VisibilityConstraint::PUBLIC),
                std::make_shared<VisibilityConstraint>(VisibilityConstraint::NONE)});
    EXPECT_TRUE(capture.fired("!m_config_constraints->m_visibility.has_value()"));
    ASSERT_TRUE(result.m_visibility);
    EXPECT_EQ(result.m_visibility->getVisibility(), VisibilityConstraint::NONE);
}

TEST(ConfigConstraintsVisitor, WithNoHandlerTheSecondReadOnlyWins)
{
    const uni::AssertHandler previous = uni::setAssertHandler(nullptr);
    const ConfigConstraints result =
        reduce({std::make_shared<ReadOnlyConstraint>(false), std::make_shared<ReadOnlyConstraint>(true)});
    uni::setAssertHandler(previous);
    ASSERT_TRUE(result.m_read_only);
    EXPECT_TRUE(result.m_read_only->getValue());
}

TEST(ConfigConstraintsVisitor, NullTargetAssertsAndVisitsAreHarmless)
{
    uni_testing::AssertCapture capture;
    ConfigConstraintsVisitor visitor(nullptr);
    EXPECT_TRUE(capture.fired("m_config_constraints"));
    EXPECT_EQ(visitor.visitAll({std::make_shared<ReadOnlyConstraint>(true),
                                std::make_shared<OptionConstraint<int>>("a", 1),
                                std::make_shared<ValueRangeConstraint<int>>(0, 1),
                                std::make_shared<StringLengthConstraint>(1, 2),
                                std::make_shared<ItemHintConstraint>("x")}),
              5u);
    EXPECT_EQ(capture.size(), 1u);
}

TEST(ConfigConstraintsVisitor, DerivedClassReachesItsOwnSlot)
{
    // The sample-rate kind is also an independent-item kind; it must not land in the base's slot.
    const ConfigConstraints fully = reduce({std::make_shared<FullyIndependentSampleRateConstraint>(true)});
    EXPECT_TRUE(fully.m_fully_indepentend_sample_rate);
    EXPECT_FALSE(fully.m_independent_cfg_item);

    const ConfigConstraints both = reduce({std::make_shared<FullyIndependentSampleRateConstraint>(true),
                                           std::make_shared<IndependentConfigItemConstraint>(false)});
    EXPECT_TRUE(both.m_fully_indepentend_sample_rate);
    ASSERT_TRUE(both.m_independent_cfg_item);
    EXPECT_FALSE(both.m_independent_cfg_item->getValue());
}

TEST(ConfigConstraintsVisitor, LinkedItemsAreReplacedWholeWithoutAssertion)
{
    const ChannelItemKeys first = {{ChannelID(1), {"A", "B"}}, {ChannelID(2), {"C"}}};
    const ChannelItemKeys second = {{ChannelID(3), {"D"}}};
    const ConfigConstraints result = reduce({std::make_shared<DependentCfgItemConstraint>(first),
                                             std::make_shared<DependentCfgItemConstraint>(second),
                                             std::make_shared<CoupledValueItemConstraint>(second),
                                             std::make_shared<CoupledValueItemConstraint>(first)});
    ASSERT_TRUE(result.m_dependent_cfg_item);
    EXPECT_EQ(result.m_dependent_cfg_item->getItems(), second);
    ASSERT_TRUE(result.m_coupled_value_item);
    EXPECT_EQ(result.m_coupled_value_item->getItems(), first);
}

TEST(ConfigConstraintsVisitor, LastChannelIdsFilePathAndHintWinQuietly)
{
    const ConfigConstraints result = reduce(
        {std::make_shared<ChannelIdsConstraint>(1, 1, "Analog"),
         std::make_shared<ChannelIdsConstraint>(8, 2, "CAN"),
         std::make_shared<FilePathConstraint>(FilePathConstraint::INPUT, "a", "", std::vector<std::string>{},
                                              false),
         std::make_shared<FilePathConstraint>(FilePathConstraint::DIRECTORY, "b", "/",
                                              std::vector<std::string>{}, true),
         std::make_shared<ItemHintConstraint>("first"), std::make_shared<ItemHintConstraint>("second")});
    ASSERT_TRUE(result.m_channel_ids && result.m_file_path && result.m_item_hint);
    EXPECT_TRUE(result.m_channel_ids->equals(ChannelIdsConstraint(8, 2, "CAN")));
    EXPECT_EQ(result.m_file_path->getSelectionType(), FilePathConstraint::DIRECTORY);
    EXPECT_EQ(result.m_item_hint->getHint(), "second");
}

TEST(ConfigConstraintsVisitor, OptionsRangesAndOthersAreKeptInOrderAsCopies)
{
    const auto option_a = std::make_shared<OptionConstraint<int>>("a", 1);
    const auto option_b = std::make_shared<OptionConstraint<std::string>>("b", "x");
    const auto range = std::make_shared<ValueRangeConstraint<ScalarConfigItem>>(ScalarConfigItem(0, "V"),
                                                                                ScalarConfigItem(5, "V"));
    const auto length = std::make_shared<StringLengthConstraint>(1, 8);
    const auto count = std::make_shared<ListElementCountConstraint>(0, 3);
    const auto expression = std::make_shared<RegularExpressionConstraint>("[a-z]+");
    const auto format = std::make_shared<StringFormatConstraint>("ip");
    ConfigConstraints result;
    ConfigConstraintsVisitor visitor(&result);
    EXPECT_EQ(visitor.visitAll({option_a, length, range, count, option_b, expression, format, nullptr}), 7u);

    ASSERT_EQ(result.m_options.size(), 2u);
    EXPECT_TRUE(result.m_options[0]->equals(*option_a));
    EXPECT_TRUE(result.m_options[1]->equals(*option_b));
    EXPECT_NE(result.m_options[0].get(), option_a.get());
    ASSERT_EQ(result.m_ranges.size(), 1u);
    EXPECT_TRUE(result.m_ranges[0]->equals(*range));
    EXPECT_NE(result.m_ranges[0].get(), range.get());
    ASSERT_EQ(result.m_others.size(), 4u);
    EXPECT_TRUE(result.m_others[0]->equals(*length));
    EXPECT_TRUE(result.m_others[1]->equals(*count));
    EXPECT_TRUE(result.m_others[2]->equals(*expression));
    EXPECT_TRUE(result.m_others[3]->equals(*format));
    EXPECT_FALSE(result.m_read_only || result.m_visibility || result.m_item_hint);
}

TEST(ConfigConstraintsVisitor, EmptyListAndTransientLeaveEverythingEmpty)
{
    EXPECT_TRUE(reduce({}).empty());
    EXPECT_TRUE(reduce({std::make_shared<TransientConstraint>(true)}).empty());
    // A plain flag names no property, so no visitor knows it.
    ConfigConstraints result;
    ConfigConstraintsVisitor visitor(&result);
    EXPECT_EQ(visitor.visitAll({std::make_shared<BooleanConstraint>(true)}), 0u);
    EXPECT_TRUE(result.empty());
    EXPECT_FALSE(reduce({std::make_shared<ItemHintConstraint>("")}).empty());
}
