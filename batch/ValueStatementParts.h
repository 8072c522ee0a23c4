#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::batch {

/// What a value statement is made of, as its text has it.
struct ValueStatementParts {
    std::string periods;      ///< how many are summed
    std::string last;         ///< the last of them, a member
    std::string measure;      ///< the name between its brackets
    std::string obsSel;       ///< the calculated member [Obs].Sel, or empty
    std::string summaryGroup; ///< behind [SuperSumery].[SumeryCode]: ".[SuperSum1].[4]", or empty
    std::string cubeName;
    std::vector<std::string> slicer; ///< the pieces of the where tuple
};

/// None for any other statement, and for one whose parts cannot be told apart for certain.
std::optional<ValueStatementParts> ReadValueStatement(std::string_view statement);

} // namespace qel::batch
