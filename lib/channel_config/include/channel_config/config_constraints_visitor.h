#pragma once

#include <channel_config/config_constraints.h>
#include <config_items/abstract_visitor.h>

#include <uni_base/type_list.h>

#include <memory>
#include <vector>

namespace channel_config {

/// Every kind of constraint a display-layer visitor must handle. A derived class
/// comes before its base: dispatch takes the first type that fits.
using ConfigConstraintsTypeList =
    uni::TypeList<config_items::IfOptionConstraint, config_items::IfRangeConstraint,
                  config_items::StringLengthConstraint, config_items::ListElementCountConstraint,
                  config_items::VisibilityConstraint, ConfigurableDuringAcquisitionConstraint,
                  ReadOnlyConstraint, DerivedValueConstraint, DependentCfgItemConstraint,
                  CoupledValueItemConstraint, FullyIndependentSampleRateConstraint,
                  IndependentConfigItemConstraint, config_items::RegularExpressionConstraint,
                  ChannelIdsConstraint, FilePathConstraint, config_items::TransientConstraint,
                  config_items::StringFormatConstraint, config_items::ItemHintConstraint>;

using ConfigConstraintsVisitorBase = config_items::AbstractVisitor<ConfigConstraintsTypeList>;

/// The kinds a table-cell editor tells apart: every typed option and range on its own,
/// so that the editor and its value type follow from the constraint's class, then the
/// remaining kinds, those that shape the text input first.
using CellEditorConstraintsTypeList = uni::TypeList<
    config_items::OptionConstraint<config_items::InvalidConfigItem>, config_items::OptionConstraint<bool>,
    config_items::OptionConstraint<config_items::StringConfigItem>, config_items::OptionConstraint<double>,
    config_items::OptionConstraint<unsigned int>, config_items::OptionConstraint<int>,
    config_items::OptionConstraint<config_items::ScalarConfigItem>,
    config_items::OptionConstraint<config_items::DecoratedNumberConfigItem>,
    config_items::OptionConstraint<config_items::RangeConfigItem<double>>,
    config_items::OptionConstraint<config_items::GenericEnumConfigItem>,
    config_items::OptionConstraint<DAQChannelType>, config_items::OptionConstraint<SampleOccurrenceType>,
    config_items::OptionConstraint<DAQSampleResolution>, config_items::OptionConstraint<ChannelID>,
    config_items::OptionConstraint<UserScalingMode>, config_items::OptionConstraint<timing::TimeSource>,
    config_items::OptionConstraint<timing::IrigCode>, config_items::ValueRangeConstraint<double>,
    config_items::ValueRangeConstraint<config_items::ScalarConfigItem>,
    config_items::ValueRangeConstraint<int>, config_items::ValueRangeConstraint<unsigned int>,
    config_items::StringLengthConstraint, config_items::ListElementCountConstraint,
    config_items::VisibilityConstraint, config_items::RegularExpressionConstraint,
    config_items::TransientConstraint, config_items::StringFormatConstraint, config_items::ItemHintConstraint,
    ConfigurableDuringAcquisitionConstraint, ReadOnlyConstraint, DerivedValueConstraint,
    DependentCfgItemConstraint, CoupledValueItemConstraint, FullyIndependentSampleRateConstraint,
    IndependentConfigItemConstraint, ChannelIdsConstraint, FilePathConstraint>;

using CellEditorConstraintsVisitorBase = config_items::AbstractVisitor<CellEditorConstraintsTypeList>;

/// Reduces a list of constraints to one ConfigConstraints. A second constraint of a
/// kind that may occur once is a programming fault: it asserts, and the later one wins.
class ConfigConstraintsVisitor : public ConfigConstraintsVisitorBase
{
public:
    /// @param target where the constraints go; must not be null
    explicit ConfigConstraintsVisitor(ConfigConstraints* target);

    /// Shows every constraint of @p constraints in turn; null entries and kinds
    /// outside the list are skipped. @return how many were taken in
    std::size_t
    visitAll(const std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>& constraints);

    void visit(const config_items::IfOptionConstraint& constraint) override;
    void visit(const config_items::IfRangeConstraint& constraint) override;
    void visit(const config_items::StringLengthConstraint& constraint) override;
    void visit(const config_items::ListElementCountConstraint& constraint) override;
    void visit(const config_items::VisibilityConstraint& constraint) override;
    void visit(const ConfigurableDuringAcquisitionConstraint& constraint) override;
    void visit(const ReadOnlyConstraint& constraint) override;
    void visit(const DerivedValueConstraint& constraint) override;
    void visit(const DependentCfgItemConstraint& constraint) override;
    void visit(const CoupledValueItemConstraint& constraint) override;
    void visit(const FullyIndependentSampleRateConstraint& constraint) override;
    void visit(const IndependentConfigItemConstraint& constraint) override;
    void visit(const config_items::RegularExpressionConstraint& constraint) override;
    void visit(const ChannelIdsConstraint& constraint) override;
    void visit(const FilePathConstraint& constraint) override;
    void visit(const config_items::TransientConstraint& constraint) override;
    void visit(const config_items::StringFormatConstraint& constraint) override;
    void visit(const config_items::ItemHintConstraint& constraint) override;

private:
    void keepOther(const config_items::IfConfigItemConstraint& constraint);

    ConfigConstraints* m_config_constraints;
};

} // namespace channel_config
