#pragma once

#include <channel_config/config_constraints_visitor.h>
#include <uni_base/countable.h>

#include <QList>
#include <QObject>
#include <QRegExp>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <vector>

namespace ferrin_config {

/// One permitted value of a cell, with the text the editor lists for it.
class QCellEditorListItem : public QObject, public uni::Countable<QCellEditorListItem>
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text CONSTANT)
    Q_PROPERTY(QVariant value READ value CONSTANT)

public:
    QCellEditorListItem(QString text, QVariant value, QObject* parent = nullptr);

    QString text() const { return m_text; }
    QVariant value() const { return m_value; }

private:
    QString m_text;
    QVariant m_value;
};

/// How the file dialog of a path cell must look.
class QFilePathConstraint : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString dialogTitle READ dialogTitle CONSTANT)
    Q_PROPERTY(QString defaultPath READ defaultPath CONSTANT)
    Q_PROPERTY(QStringList nameFilters READ nameFilters CONSTANT)

public:
    QFilePathConstraint(const channel_config::FilePathConstraint& constraint, QObject* parent = nullptr);

    QString dialogTitle() const { return m_dialog_title; }
    QString defaultPath() const { return m_default_path; }
    QStringList nameFilters() const { return m_name_filters; }

    Q_INVOKABLE bool selectExisting() const;
    Q_INVOKABLE bool selectFolder() const;
    Q_INVOKABLE bool selectMultiple() const;

private:
    channel_config::FilePathConstraint::SelectionType m_selection_type;
    bool m_multi_selection;
    QString m_dialog_title;
    QString m_default_path;
    QStringList m_name_filters;
};

class QCellEditorConstraintsVisitor;

/// What the editor of one table cell needs to know about its key's constraints.
class QCellEditorConstraints : public QObject, public uni::Countable<QCellEditorConstraints>
{
    Q_OBJECT
    Q_PROPERTY(EditorType editorType READ editorType NOTIFY editorTypeChanged)
    Q_PROPERTY(QList<QObject*> selectOptions READ selectOptions NOTIFY selectOptionsChanged)
    Q_PROPERTY(QStringList stringSelectOptions READ stringSelectOptions NOTIFY stringSelectOptionsChanged)
    Q_PROPERTY(bool freelyEditable READ freelyEditable NOTIFY freelyEditableChanged)
    Q_PROPERTY(bool configurableDuringAcquisition READ configurableDuringAcquisition NOTIFY
                   configurableDuringAcquisitionChanged)
    Q_PROPERTY(bool readOnly READ readOnly NOTIFY readOnlyChanged)
    Q_PROPERTY(double minValue READ minValue NOTIFY minValueChanged)
    Q_PROPERTY(double maxValue READ maxValue NOTIFY maxValueChanged)
    Q_PROPERTY(bool hasRegularExpression READ hasRegularExpression NOTIFY hasRegularExpressionChanged)
    Q_PROPERTY(QRegExp regularExpression READ regularExpression NOTIFY regularExpressionChanged)
    Q_PROPERTY(int maxChannelDimension READ maxChannelDimension NOTIFY maxChannelDimensionChanged)
    Q_PROPERTY(QString channelType READ channelType NOTIFY channelTypeChanged)
    Q_PROPERTY(int minListItems READ minListItems NOTIFY minListItemsChanged)
    Q_PROPERTY(int maxListItems READ maxListItems NOTIFY maxListItemsChanged)
    Q_PROPERTY(Visibility visibility READ visibility NOTIFY visibilityChanged)
    Q_PROPERTY(QString itemHint READ itemHint NOTIFY itemHintChanged)
    Q_PROPERTY(bool hasFilePath READ hasFilePath NOTIFY hasFilePathChanged)
    Q_PROPERTY(ferrin_config::QFilePathConstraint* filePath READ filePath NOTIFY filePathChanged)
    Q_PROPERTY(QString unit READ unit NOTIFY unitChanged)
    Q_PROPERTY(bool strictValidation READ strictValidation NOTIFY strictValidationChanged)

public:
    enum EditorType
    {
        EDITOR_NONE = 0,
        EDITOR_INT = 1,
        EDITOR_FLOAT = 2,
        EDITOR_STRING = 3,
        EDITOR_RATIONAL = 4,
        EDITOR_BOOL = 5,
        EDITOR_CHANNEL = 6,
        EDITOR_FILE = 7,
        EDITOR_MULTILINE_STRING = 8
    };
    Q_ENUM(EditorType)

    enum Visibility
    {
        VISIBILITY_PUBLIC = 0,
        VISIBILITY_GOD = 1,
        VISIBILITY_NONE = 2
    };
    Q_ENUM(Visibility)

    explicit QCellEditorConstraints(QObject* parent = nullptr);
    /// Built from the constraints of one key.
    explicit QCellEditorConstraints(
        const std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>& constraints,
        QObject* parent = nullptr);

    EditorType editorType() const { return m_editor_type; }
    QList<QObject*> selectOptions() const { return m_select_options; }
    QStringList stringSelectOptions() const { return m_string_select_options; }
    bool freelyEditable() const { return m_freely_editable; }
    bool configurableDuringAcquisition() const { return m_configurable_during_acquisition; }
    bool readOnly() const { return m_read_only; }
    double minValue() const { return m_min_value; }
    double maxValue() const { return m_max_value; }
    bool hasRegularExpression() const { return !m_regular_expression.pattern().isEmpty(); }
    QRegExp regularExpression() const { return m_regular_expression; }
    int maxChannelDimension() const { return m_max_channel_dimension; }
    QString channelType() const { return m_channel_type; }
    int minListItems() const { return m_min_list_items; }
    int maxListItems() const { return m_max_list_items; }
    Visibility visibility() const { return m_visibility; }
    QString itemHint() const { return m_item_hint; }
    bool hasFilePath() const { return m_file_path != nullptr; }
    QFilePathConstraint* filePath() const { return m_file_path; }
    QString unit() const { return m_unit; }
    bool strictValidation() const { return m_strict_validation; }

    /// Takes @p pattern as the expression a text must match; asserts that it is valid.
    void setRegularExpression(const QString& pattern);

Q_SIGNALS:
    void editorTypeChanged();
    void selectOptionsChanged();
    void stringSelectOptionsChanged();
    void freelyEditableChanged();
    void configurableDuringAcquisitionChanged();
    void readOnlyChanged();
    void minValueChanged();
    void maxValueChanged();
    void hasRegularExpressionChanged();
    void regularExpressionChanged();
    void maxChannelDimensionChanged();
    void channelTypeChanged();
    void minListItemsChanged();
    void maxListItemsChanged();
    void visibilityChanged();
    void itemHintChanged();
    void hasFilePathChanged();
    void filePathChanged();
    void unitChanged();
    void strictValidationChanged();

private:
    friend class QCellEditorConstraintsVisitor;

    template <typename T, typename Signal>
    void assign(T& member, T value, Signal signal);
    void addOption(const QString& text, const QVariant& value);
    /// Widens the limits by one range whose bounds are stated in their units.
    void addRange(double lower, const QString& lower_unit, double upper, const QString& upper_unit);

    EditorType m_editor_type = EDITOR_NONE;
    QList<QObject*> m_select_options;
    QStringList m_string_select_options;
    bool m_freely_editable = true;
    bool m_configurable_during_acquisition = false;
    bool m_read_only = false;
    double m_min_value;
    double m_max_value;
    bool m_has_range = false;
    QRegExp m_regular_expression;
    int m_max_channel_dimension = 0;
    QString m_channel_type;
    int m_min_list_items = 0;
    int m_max_list_items = 0;
    Visibility m_visibility = VISIBILITY_PUBLIC;
    QString m_item_hint;
    QFilePathConstraint* m_file_path = nullptr;
    QString m_unit;
    QString m_min_unit;
    bool m_strict_validation = false;
};

/// Reduces each kind of constraint to what it means for a cell's editor.
class QCellEditorConstraintsVisitor : public channel_config::CellEditorConstraintsVisitorBase
{
public:
    /// @param target where the constraints go; must not be null
    explicit QCellEditorConstraintsVisitor(QCellEditorConstraints* target);

    /// Shows @p constraints in turn; null entries and kinds outside the list are skipped.
    void visitAll(const std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>& constraints);

    void visit(const config_items::OptionConstraint<config_items::InvalidConfigItem>& constraint) override;
    void visit(const config_items::OptionConstraint<bool>& constraint) override;
    void visit(const config_items::OptionConstraint<config_items::StringConfigItem>& constraint) override;
    void visit(const config_items::OptionConstraint<double>& constraint) override;
    void visit(const config_items::OptionConstraint<unsigned int>& constraint) override;
    void visit(const config_items::OptionConstraint<int>& constraint) override;
    void visit(const config_items::OptionConstraint<config_items::ScalarConfigItem>& constraint) override;
    void
    visit(const config_items::OptionConstraint<config_items::DecoratedNumberConfigItem>& constraint) override;
    void
    visit(const config_items::OptionConstraint<config_items::RangeConfigItem<double>>& constraint) override;
    void
    visit(const config_items::OptionConstraint<config_items::GenericEnumConfigItem>& constraint) override;
    void visit(const config_items::OptionConstraint<channel_config::DAQChannelType>& constraint) override;
    void
    visit(const config_items::OptionConstraint<channel_config::SampleOccurrenceType>& constraint) override;
    void
    visit(const config_items::OptionConstraint<channel_config::DAQSampleResolution>& constraint) override;
    void visit(const config_items::OptionConstraint<channel_config::ChannelID>& constraint) override;
    void visit(const config_items::OptionConstraint<channel_config::UserScalingMode>& constraint) override;
    void visit(const config_items::OptionConstraint<timing::TimeSource>& constraint) override;
    void visit(const config_items::OptionConstraint<timing::IrigCode>& constraint) override;
    void visit(const config_items::ValueRangeConstraint<double>& constraint) override;
    void visit(const config_items::ValueRangeConstraint<config_items::ScalarConfigItem>& constraint) override;
    void visit(const config_items::ValueRangeConstraint<int>& constraint) override;
    void visit(const config_items::ValueRangeConstraint<unsigned int>& constraint) override;
    void visit(const config_items::StringLengthConstraint& constraint) override;
    void visit(const config_items::ListElementCountConstraint& constraint) override;
    void visit(const config_items::VisibilityConstraint& constraint) override;
    void visit(const config_items::RegularExpressionConstraint& constraint) override;
    void visit(const config_items::TransientConstraint& constraint) override;
    void visit(const config_items::StringFormatConstraint& constraint) override;
    void visit(const config_items::ItemHintConstraint& constraint) override;
    void visit(const channel_config::ConfigurableDuringAcquisitionConstraint& constraint) override;
    void visit(const channel_config::ReadOnlyConstraint& constraint) override;
    void visit(const channel_config::DerivedValueConstraint& constraint) override;
    void visit(const channel_config::DependentCfgItemConstraint& constraint) override;
    void visit(const channel_config::CoupledValueItemConstraint& constraint) override;
    void visit(const channel_config::FullyIndependentSampleRateConstraint& constraint) override;
    void visit(const channel_config::IndependentConfigItemConstraint& constraint) override;
    void visit(const channel_config::ChannelIdsConstraint& constraint) override;
    void visit(const channel_config::FilePathConstraint& constraint) override;

private:
    /// An option: listed with its value; the first option's kind picks the editor.
    void option(const std::string& label, const QVariant& value, QCellEditorConstraints::EditorType editor,
                bool free_text);
    /// The editor for a kind, unless an earlier constraint chose one.
    void editor(QCellEditorConstraints::EditorType type);

    QCellEditorConstraints* m_target;
};

} // namespace ferrin_config
