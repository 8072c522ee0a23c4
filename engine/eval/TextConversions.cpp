#include "engine/eval/FunctionLookup.h"

#include <array>

// Functions between members, tuples and sets and the texts that name them.

namespace qel::engine {

namespace {

std::string TupleText(const MemberSpace& space, const Dimensionality& dimensionality,
                      std::span<const MemberId> tuple) {
    std::string text;
    for (std::size_t i = 0; i < tuple.size(); ++i) {
        text += (i > 0 ? ", " : "") + space.UniqueName({dimensionality[i], tuple[i]});
    }
    return tuple.size() == 1 ? text : "(" + text + ")";
}

Bound MemberToStr(Call& call) {
    MemberPtr member = call.Member(0);
    const bool isConstant = member->IsConstant();
    return MakeText(isConstant, [member = std::move(member)](Evaluator& evaluator) {
        const MemberRef of{member->Hierarchy(), member->Evaluate(evaluator)};
        return of.id == noMember ? std::string() : evaluator.Space().UniqueName(of);
    });
}

Bound TupleToStr(Call& call) {
    SetPtr tuple =
        SetOfTuple(call.binder.ToTuple(call.binder.Bind(call.arguments[0]), call.arguments[0], "a tuple"));
    const bool isConstant = tuple->IsConstant();
    return MakeText(isConstant, [tuple = std::move(tuple)](Evaluator& evaluator) {
        const TupleSet set = tuple->Evaluate(evaluator);
        return set.Count() == 0 ? std::string() : TupleText(evaluator.Space(), set.dimensionality, set.At(0));
    });
}

Bound SetToStr(Call& call) {
    SetPtr set = call.Set(0);
    const bool isConstant = set->IsConstant();
    return MakeText(isConstant, [set = std::move(set)](Evaluator& evaluator) {
        const TupleSet tuples = set->Evaluate(evaluator);
        std::string text = "{";
        for (std::size_t i = 0; i < tuples.Count(); ++i) {
            text += (i > 0 ? ", " : "") + TupleText(evaluator.Space(), tuples.dimensionality, tuples.At(i));
            CheckTextLength(text.size());
        }
        return text + "}";
    });
}

/// What a text names, as if it stood in the statement.
Bound Meaning(Call& call) {
    call.HasFlag(1, "constrained"); // a text that does not depend on cells has only names anyway
    const std::string text = call.ConstantText(0);
    return call.binder.BindTextOf(call.arguments[0], text);
}

Bound StrToMember(Call& call) { return call.binder.ToMember(Meaning(call), call.arguments[0]); }
Bound StrToTuple(Call& call) { return call.binder.ToTuple(Meaning(call), call.arguments[0], "a tuple"); }

Bound StrToSet(Call& call) { return call.binder.ToSet(Meaning(call), call.arguments[0]); }

constexpr std::array<Function, 6> textConversions{{{"MemberToStr", 1, 1, MemberToStr},
                                                   {"TupleToStr", 1, 1, TupleToStr},
                                                   {"SetToStr", 1, 1, SetToStr},
                                                   {"StrToMember", 1, 2, StrToMember},
                                                   {"StrToTuple", 1, 2, StrToTuple},
                                                   {"StrToSet", 1, 2, StrToSet}}};

} // namespace

std::span<const Function> TextConversions() { return textConversions; }

} // namespace qel::engine
