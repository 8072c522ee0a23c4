#pragma once

#include "platform/sheet/Spreadsheet.h"
#include "platform/value/Variant.h"
#include "wizard/FormulaArgs.h"
#include "wizard/NamedQueries.h"
#include "wizard/Selection.h"

#include <functional>
#include <string>
#include <vector>

namespace qel {

/// How the arguments of a written call are read.
struct ArgumentReader {
    /// As the cell, which outlives the reader, evaluates them.
    static ArgumentReader Of(const FormulaCell& cell, std::function<std::string(const std::string&)> fullPath,
                             const Locale& locale);

    /// The value of an argument as it is written: a constant's, or that of its expression; Empty for an
    /// omitted one, a list for a reference to cells. The spreadsheet evaluates what nothing else can.
    Variant Read(const std::string& argument) const;
    /// The same of an argument that takes no list: of a reference to one cell, its value.
    Variant ReadValue(const std::string& argument) const;

    std::function<Variant(const std::string& expression)> evaluate; ///< as FormulaCell
    std::function<std::string(const std::string& path)> fullPath;   ///< of a cube file, as the sheet means it
    const Locale& locale;
    bool takesTextsAsKeys = true; ///< as FormulaCell
};

/// The arguments of a value formula that is edited. An argument that still means the same when the formula is
/// written again stays as it was: a reference, an expression, a note in further keys.
class EditedValueCall {
public:
    EditedValueCall(std::vector<std::string> arguments, const ArgumentReader& reader);

    /// The values of the arguments; empty where an argument has none. A plain text that the spreadsheet does
    /// not accept as a key stays a text.
    const ValueCall& Call() const { return call_; }
    /// The arguments without a value that the function takes.
    std::vector<std::size_t> Faulty() const;
    /// What the wizard starts with.
    Selection Choices() const;
    /// The arguments of the formula after a call was chosen, which `composed` says in a formula's words.
    /// Raises as ToText.
    std::vector<std::string> Rewritten(const ValueCall& chosen, FormulaArgs composed, char separator) const;

private:
    void Take(std::size_t argument, const Variant& value);
    bool IsPlainText(std::size_t argument) const;
    bool MeansTheSame(std::size_t argument, const ValueCall& chosen) const;

    std::vector<std::string> arguments_;
    const Locale& locale_;
    bool takesTextsAsKeys_;
    ValueCall call_;
    std::array<bool, std::tuple_size_v<FormulaArgs>> isFaulty_{}; ///< has no value that the function takes
};

/// The same of a name formula.
class EditedNameCall {
public:
    EditedNameCall(std::vector<std::string> arguments, const ArgumentReader& reader);

    NamedQuery Choice() const;
    /// `chosen` are the arguments as they stand in a formula.
    std::vector<std::string> Rewritten(const std::vector<std::string>& chosen) const;

private:
    std::vector<std::string> arguments_;
    std::vector<std::string> values_;
};

} // namespace qel
