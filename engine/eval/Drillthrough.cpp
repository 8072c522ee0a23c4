#include "qel/engine/Drillthrough.h"

#include "engine/eval/DrilledCell.h"
#include "engine/mdx/Lexer.h"
#include "engine/mdx/ReservedWords.h"

namespace qel::engine {

bool IsDrillthrough(std::string_view statement) {
    try {
        const mdx::Token first = mdx::Lexer(statement).Next();
        return first.kind == mdx::TokenKind::Word && mdx::IsWord(first.text, "drillthrough");
    } catch (const EngineError&) {
        return false; // the parser says where the fault is
    }
}

FactLines RunDrillthrough(const Cube& cube, std::string_view statement,
                          const std::function<void(double)>& progress) {
    const DrilledCell cell = FindDrilledCell(cube, statement);
    const SelectedLines selected = SelectLines(cube, cell.parts, cell.firstRow, cell.mostRows, progress);
    FactLines lines;
    lines.total = selected.total;
    lines.rows.resize(selected.places.size());
    for (const LineColumn& column : cell.columns) {
        lines.columns.push_back(column.name);
        std::vector<LineValue> values = ReadLineColumn(cube, column, selected.places);
        for (std::size_t row = 0; row < values.size(); ++row) {
            lines.rows[row].push_back(std::move(values[row]));
        }
        if (progress) {
            progress(1);
        }
    }
    cube.CheckUnchanged();
    return lines;
}

} // namespace qel::engine
