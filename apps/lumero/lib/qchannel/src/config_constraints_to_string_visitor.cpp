#include "config_constraints_to_string_visitor.h"

#include <stdexcept>
#include <string>
#include <typeinfo>

namespace lum::detail {

using namespace channel_config;
using namespace config_items;

namespace {

QString q(const std::string& text)
{
    return QString::fromStdString(text);
}

QString boolText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString joined(const std::vector<std::string>& texts)
{
    QStringList list;
    for (const std::string& text : texts)
        list << q(text);
    return list.join(QStringLiteral(", "));
}

QString linkedItems(const char* title, const ChannelItemKeys& items)
{
    QString line = QString::fromLatin1(title);
    for (const auto& [channel, keys] : items)
        line += QStringLiteral("channel %1 {%2} ").arg(QString::number(channel.toUInt64()), joined(keys));
    return line;
}

} // namespace

QStringList ConfigConstraintsToStringVisitor::describe(
    const std::vector<std::shared_ptr<IfConfigItemConstraint>>& constraints)
{
    ConfigConstraintsToStringVisitor visitor;
    for (const auto& constraint : constraints)
        if (constraint && !config_items::dispatchVisit(visitor, *constraint)) {
            const auto& kind = *constraint;
            throw std::invalid_argument(std::string("Unsupported type: ") + typeid(kind).name());
        }
    return visitor.m_lines;
}

void ConfigConstraintsToStringVisitor::addFlag(const char* format, bool value)
{
    m_lines << QString::fromLatin1(format).arg(boolText(value));
}

void ConfigConstraintsToStringVisitor::visit(const IfOptionConstraint& constraint)
{
    m_lines << QStringLiteral("Option: '%1' (%2)").arg(q(constraint.getLabel()), q(constraint.getTypeName()));
}

void ConfigConstraintsToStringVisitor::visit(const IfRangeConstraint& constraint)
{
    if (const auto* d = dynamic_cast<const ValueRangeConstraint<double>*>(&constraint))
        m_lines << QStringLiteral("Range: [%1, %2] (Double)").arg(d->getLower()).arg(d->getUpper());
    else if (const auto* u = dynamic_cast<const ValueRangeConstraint<unsigned int>*>(&constraint))
        m_lines << QStringLiteral("Range: [%1, %2] (UInt)").arg(u->getLower()).arg(u->getUpper());
    else if (const auto* i = dynamic_cast<const ValueRangeConstraint<int>*>(&constraint))
        m_lines << QStringLiteral("Range: [%1, %2] (SInt)").arg(i->getLower()).arg(i->getUpper());
    else if (const auto* s = dynamic_cast<const ValueRangeConstraint<ScalarConfigItem>*>(&constraint))
        // All four at once, so that a "%" in a unit is not taken for a placeholder.
        m_lines << QStringLiteral("Range: [%1 %2, %3 %4] (Scalar)")
                       .arg(QString::number(s->getLower().getValue()), q(s->getLower().getUnit()),
                            QString::number(s->getUpper().getValue()), q(s->getUpper().getUnit()));
    else
        m_lines << QStringLiteral("Range: unknown type");
}

void ConfigConstraintsToStringVisitor::visit(const StringLengthConstraint& constraint)
{
    m_lines
        << QStringLiteral("StringLength: [%1, %2]").arg(constraint.getMinimum()).arg(constraint.getMaximum());
}

void ConfigConstraintsToStringVisitor::visit(const ListElementCountConstraint& constraint)
{
    m_lines << QStringLiteral("ListElementCountConstraint: [%1, %2]")
                   .arg(constraint.getMinimum())
                   .arg(constraint.getMaximum());
}

void ConfigConstraintsToStringVisitor::visit(const VisibilityConstraint& constraint)
{
    m_lines << QStringLiteral("Visibility: %1")
                   .arg(constraint.getVisibility() == VisibilityConstraint::PUBLIC ? QStringLiteral("PUBLIC")
                                                                                   : QStringLiteral("NONE"));
}

void ConfigConstraintsToStringVisitor::visit(const ConfigurableDuringAcquisitionConstraint& constraint)
{
    addFlag("ConfigurableDuringAcquisition: %1", constraint.getValue());
}

void ConfigConstraintsToStringVisitor::visit(const ReadOnlyConstraint& constraint)
{
    addFlag("ReadOnly: %1", constraint.getValue());
}

void ConfigConstraintsToStringVisitor::visit(const DerivedValueConstraint& constraint)
{
    addFlag("DerivedValue: %1", constraint.getValue());
}

void ConfigConstraintsToStringVisitor::visit(const DependentCfgItemConstraint& constraint)
{
    m_lines << linkedItems("DependentCfgItem: ", constraint.getItems());
}

void ConfigConstraintsToStringVisitor::visit(const CoupledValueItemConstraint& constraint)
{
    m_lines << linkedItems("CoupledValueItem: ", constraint.getItems());
}

void ConfigConstraintsToStringVisitor::visit(const FullyIndependentSampleRateConstraint& constraint)
{
    addFlag("FullyIndependentSampleRate: %1", constraint.getValue());
}

void ConfigConstraintsToStringVisitor::visit(const IndependentConfigItemConstraint& constraint)
{
    addFlag("IndependentConfigItem: %1", constraint.getValue());
}

void ConfigConstraintsToStringVisitor::visit(const RegularExpressionConstraint& constraint)
{
    m_lines << QStringLiteral("Expression: %1").arg(q(constraint.getExpression()));
}

void ConfigConstraintsToStringVisitor::visit(const ChannelIdsConstraint& constraint)
{
    m_lines << QStringLiteral("ChannelIds: maximum %1 items with max dimension %2 and type %3")
                   .arg(QString::number(constraint.getMaxCount()),
                        QString::number(constraint.getMaxDimension()), q(constraint.getChannelType()));
}

void ConfigConstraintsToStringVisitor::visit(const FilePathConstraint& constraint)
{
    QString line =
        QStringLiteral("Filepath: %1 selection")
            .arg(QString::fromLatin1(FilePathConstraint::selectionTypeName(constraint.getSelectionType())));
    line += QStringLiteral(", multi select '%1'").arg(boolText(constraint.isMultiSelection()));
    line += QStringLiteral(", title '%1'").arg(q(constraint.getTitle()));
    line += QStringLiteral(", path '%1'").arg(q(constraint.getPath()));
    // The filters take the lowest placeholder, which here is %2.
    line += QStringLiteral("filters {%2} ").arg(joined(constraint.getFilters()));
    m_lines << line;
}

void ConfigConstraintsToStringVisitor::visit(const TransientConstraint& constraint)
{
    addFlag("Transient: %1", constraint.isTransient());
}

void ConfigConstraintsToStringVisitor::visit(const StringFormatConstraint& constraint)
{
    m_lines << QStringLiteral("StringFormat: %1").arg(q(constraint.getFormat()));
}

void ConfigConstraintsToStringVisitor::visit(const ItemHintConstraint& constraint)
{
    m_lines << QStringLiteral("ItemHint: %1").arg(q(constraint.getHint()));
}

} // namespace lum::detail
