#pragma once

#include "engine/eval/Binder.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A function call to be bound.
struct Call {
    Binder& binder;
    mdx::NodeId node;
    std::vector<mdx::NodeId> arguments;

    std::size_t Count() const { return arguments.size(); }
    SetPtr Set(std::size_t argument) { return binder.BindSet(arguments[argument]); }
    NumberPtr Number(std::size_t argument) { return binder.BindNumber(arguments[argument]); }
    MemberPtr Member(std::size_t argument) { return binder.BindMember(arguments[argument]); }
    TextPtr Text(std::size_t argument) { return binder.BindText(arguments[argument]); }
    /// Whether the argument is given and not left empty, as the second of `f(a, , b)`.
    bool Has(std::size_t argument) const {
        return Count() > argument && binder.At(arguments[argument]).kind != mdx::NodeKind::Missing;
    }
    mdx::SourceRange Range() const { return binder.At(node).range; }
    /// The argument's value, or the cell's when it is missing.
    NumberPtr NumberOrCell(std::size_t argument);
    /// The argument's text, which must not depend on cells.
    std::string ConstantText(std::size_t argument);
    /// Whether the argument is that word. Raises InvalidExpression when it is something else.
    bool HasFlag(std::size_t argument, std::string_view word) const {
        return Count() > argument && Flag(argument, {&word, 1}) == 0;
    }
    /// The argument's value, or null when it is missing.
    NumberPtr OptionalNumber(std::size_t argument) { return Count() > argument ? Number(argument) : nullptr; }
    /// The index of the argument's word in `words`; raises InvalidExpression listing `words` when it is none
    /// of them.
    std::size_t Flag(std::size_t argument, std::span<const std::string_view> words) const;
};

struct Function {
    std::string_view name;
    std::size_t fewestArguments;
    std::size_t mostArguments;
    Bound (*bind)(Call& call);
};

/// Any number of arguments.
inline constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

/// The function of that name (any letter case), or null.
const Function* FindFunction(std::string_view name);
/// What to write instead of a function of MDX that is not supported; empty for other names.
std::string_view InsteadOf(std::string_view name);

/// The tables that FindFunction searches, one per kind of function.
std::span<const Function> SetFunctions();
std::span<const Function> SortFunctions();
std::span<const Function> FamilyFunctions();
std::span<const Function> NumberFunctions();
std::span<const Function> ConditionalFunctions();
std::span<const Function> PeriodFunctions();
std::span<const Function> ExistenceFunctions();
std::span<const Function> DrillFunctions();
std::span<const Function> StatisticFunctions();
std::span<const Function> RankFunctions();
std::span<const Function> TextFunctions();
std::span<const Function> TextConversions();
std::span<const Function> MemberTests();

/// Binds a function written after a dot.
Bound BindMethod(Binder& binder, mdx::NodeId node);

/// Converts an argument to a whole number, truncating fractions.
std::int64_t WholeNumber(const CellValue& value);

} // namespace qel::engine
