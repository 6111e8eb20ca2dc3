#pragma once

#include <config_items/if_config_item_constraint.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace channel_config {

/// How the file picker for a path item must look.
class FilePathConstraint : public config_items::ConstraintBase<FilePathConstraint>
{
public:
    enum SelectionType : std::uint8_t
    {
        INPUT = 0,
        OUTPUT = 1,
        DIRECTORY = 2
    };

    FilePathConstraint(SelectionType selection_type, std::string title, std::string path,
                       std::vector<std::string> filters, bool multi_selection)
        : m_selection_type(selection_type), m_title(std::move(title)), m_path(std::move(path)),
          m_filters(std::move(filters)), m_multi_selection(multi_selection)
    {}

    SelectionType getSelectionType() const { return m_selection_type; }
    const std::string& getTitle() const { return m_title; }
    const std::string& getPath() const { return m_path; }
    const std::vector<std::string>& getFilters() const { return m_filters; }
    bool isMultiSelection() const { return m_multi_selection; }

    auto fields() const { return std::tie(m_selection_type, m_title, m_path, m_filters, m_multi_selection); }

    /// "Input", "Output" or "Directory"; "UNKNOWN" for a value outside the enumeration.
    static const char* selectionTypeName(SelectionType type);

private:
    SelectionType m_selection_type;
    std::string m_title;
    std::string m_path;
    std::vector<std::string> m_filters;
    bool m_multi_selection;
};

} // namespace channel_config
