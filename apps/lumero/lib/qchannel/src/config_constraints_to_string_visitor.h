#pragma once

#include <channel_config/config_constraints_visitor.h>

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace lum::detail {

/// Writes each constraint it is shown as one line, for diagnostics of a channel's items.
class ConfigConstraintsToStringVisitor : public channel_config::ConfigConstraintsVisitorBase
{
public:
    /// One line per constraint of @p constraints, in order. Throws std::invalid_argument
    /// ("Unsupported type: " and the class) for a kind outside the visitor's list.
    static QStringList
    describe(const std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>& constraints);

    const QStringList& lines() const { return m_lines; }

    void visit(const config_items::IfOptionConstraint& constraint) override;
    void visit(const config_items::IfRangeConstraint& constraint) override;
    void visit(const config_items::StringLengthConstraint& constraint) override;
    void visit(const config_items::ListElementCountConstraint& constraint) override;
    void visit(const config_items::VisibilityConstraint& constraint) override;
    void visit(const channel_config::ConfigurableDuringAcquisitionConstraint& constraint) override;
    void visit(const channel_config::ReadOnlyConstraint& constraint) override;
    void visit(const channel_config::DerivedValueConstraint& constraint) override;
    void visit(const channel_config::DependentCfgItemConstraint& constraint) override;
    void visit(const channel_config::CoupledValueItemConstraint& constraint) override;
    void visit(const channel_config::FullyIndependentSampleRateConstraint& constraint) override;
    void visit(const channel_config::IndependentConfigItemConstraint& constraint) override;
    void visit(const config_items::RegularExpressionConstraint& constraint) override;
    void visit(const channel_config::ChannelIdsConstraint& constraint) override;
    void visit(const channel_config::FilePathConstraint& constraint) override;
    void visit(const config_items::TransientConstraint& constraint) override;
    void visit(const config_items::StringFormatConstraint& constraint) override;
    void visit(const config_items::ItemHintConstraint& constraint) override;

private:
    void addFlag(const char* format, bool value);

    QStringList m_lines;
};

} // namespace lum::detail
