#pragma once

#include <lum_utils/if_simple_spreadsheet_builder.h>

#include <vector>

namespace lum_utils {

/// Passes every call on to each registered builder, in the order of registration,
/// so that one walk over a table fills several formats. The builders are not
/// owned; the dispatcher itself holds no text.
class SimpleSpreadsheetBuilderDispatcher : public IfSimpleSpreadsheetBuilder
{
public:
    SimpleSpreadsheetBuilderDispatcher() = default;

    /// Adds @p builder at the end; null and the dispatcher itself are refused.
    void addBuilder(IfSimpleSpreadsheetBuilder* builder);
    const std::vector<IfSimpleSpreadsheetBuilder*>& builders() const { return m_builders; }

    void startTable(const std::string& name, std::uint32_t columns, std::uint32_t rows) override;
    void setDimensions(std::uint32_t columns, std::uint32_t rows) override;
    void beginRow() override;
    void endRow() override;
    void addCell(const std::string& text) override;
    void addCell(double value) override;
    void addEmptyCell() override;
    void endTable() override;

    const char* data() const override { return nullptr; }
    std::size_t size() const override { return 0; }
    std::string toString() const override { return {}; }

private:
    std::vector<IfSimpleSpreadsheetBuilder*> m_builders;
};

} // namespace lum_utils
