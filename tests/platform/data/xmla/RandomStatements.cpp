#include "tests/platform/data/xmla/RandomStatements.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>

namespace qel::test {

namespace {

/// What a symbol may stand for. Rules before `leaves` need no others.
struct Rules {
    char symbol;
    std::size_t leaves;
    std::vector<const char*> rules;
};

// $h the hierarchy, $l a level, $b a stored member, $i the top one, $r two stored members of a level as a
// range, $n a small number, $q a stored measure, $A a new name of a set, $a the latest one. $2 before a
// letter is the scope's second hierarchy, $@ any hierarchy, $# the dates.
const Rules grammar[] = {
    {'m',
     1,
     {"$b",
      "$m.Parent",
      "$m.FirstChild",
      "$m.LastChild",
      "$m.PrevMember",
      "$m.NextMember",
      "$m.FirstSibling",
      "$m.LastSibling",
      "$m.Lag($n)",
      "$m.Lead($n)",
      "Ancestor($m, $n)",
      "Ancestor($b, $l)",
      "$s.Item($n)",
      "ParallelPeriod($l, $n, $m)",
      "$h.DefaultMember",
      "($b, $@q).Item(0)",
      "Cousin($e, $b)",
      "OpeningPeriod($l, $e)",
      "ClosingPeriod($l, $e)",
      "Ancestors($e, 1).Item(0)"}},
    {'e',
     2, // one that exists, of which the server can find the family
     {"$b", "$h.DefaultMember", "$e.FirstSibling", "$e.LastSibling", "$e.Lag(0)", "Ancestor($e, 0)",
      "($b, $@q).Item(0)", "{$e}.Item(0)"}},
    {'s',
     5,
     {"{$b}",
      "{$b, $b}",
      "{$r}",
      "$l.Members",
      "$h.Members",
      "{$m, $m}",
      "{$s, $m}",
      "$m.Children",
      "$e.Siblings",
      "$h.AllMembers",
      "$l.AllMembers",
      "Union($s, $s)",
      "Union($s, $s, ALL)",
      "Except(Distinct($s), $s)",
      "Except($s, $s, ALL)",
      "Intersect($s, $s)",
      "Intersect($s, $s, ALL)",
      "Distinct($s)",
      "Head($s, $n)",
      "Tail($s, $n)",
      "Head($s)",
      "Tail($s)",
      "Subset($s, $n)",
      "Subset($s, $n, $n)",
      "Hierarchize($s)",
      "Hierarchize($s, POST)",
      "Filter($s, $c)",
      "Filter($s, $w)",
      "Order($s, $u)",
      "Order($s, $u, ASC)",
      "Order($s, $u, DESC)",
      "Order($s, $k, BASC)",
      "Order($s, $k, BDESC)",
      "Order($s, $h.CurrentMember.Name, BASC)",
      "TopCount($s, $n, $k)",
      "BottomCount($s, $n, $k)",
      "TopCount($s, $n)",
      "Descendants($e)",
      "Descendants($e, $l)",
      "Descendants($e, $l, $f)",
      "Descendants($e, $n, $f)",
      "Descendants($i, , LEAVES)",
      "Ascendants($e)",
      "LastPeriods($n, $b)",
      "PeriodsToDate($l, $m)",
      "Generate($s, {$h.CurrentMember, $m})",
      "Generate(Head($s, 9), $h.CurrentMember.Children)",
      "Generate(Head($s, 9), {$h.CurrentMember.FirstSibling}, ALL)",
      "Exists($s, $s)",
      "DrilldownLevel($s)",
      "DrilldownLevel($s, $l)",
      "DrilldownMember($l.Members, $s)",
      "DrilldownMember({$b}, $s, RECURSIVE)",
      "ToggleDrillState($s, $s)",
      "TopPercent(Distinct($s), $n, $j)",
      "BottomPercent(Distinct($s), $n0, $j)",
      "TopSum($s, $n0, $j)",
      "BottomSum($s, $n0, $j)",
      "Order($s, $h.CurrentMember.Level.Ordinal, BDESC, $k, BASC)",
      "Order($s, Len($h.CurrentMember.Name), BASC, $u, BASC)",
      "AddCalculatedMembers($l.Members)",
      "StripCalculatedMembers($s)",
      "Filter($s AS $A, $a.CurrentOrdinal < $n)",
      "Filter($s AS $A, $a.Current.Name = $t)",
      "IIf($c, $s, {$b})",
      "$e.Level.Members"}},
    {'p',
     3,
     {"CrossJoin($s, $2s)",
      "{($b, $2b), ($b, $2b)}",
      "($s * $2s)",
      "Union($p, $p)",
      "Except(Distinct($p), $p)",
      "Intersect($p, $p)",
      "Distinct($p)",
      "Head($p, $n)",
      "Tail($p, $n)",
      "Subset($p, $n, $n)",
      "Hierarchize($p)",
      "Hierarchize($p, POST)",
      "Filter($p, $c)",
      "Filter($p, $w)",
      "Order(Head($p, 40), $u, ASC)",
      "Order(Head($p, 40), $u, DESC)",
      "Order($p, $k, BASC)",
      "Order($p, $k, BDESC)",
      "TopCount($p, $n, $k)",
      "BottomCount($p, $n, $k)",
      "{$p.Item($n)}",
      "{($m, $2m)}",
      "Generate(Head($s, 9), CrossJoin({$h.CurrentMember}, $2s))",
      "DrilldownMember(CrossJoin($l.Members, {$2b}), $s)",
      "TopPercent(Distinct($p), $n0, $j)",
      "Order($p, $2h.CurrentMember.Level.Ordinal, BDESC, $k, BASC)"}},
    {'v',
     3,
     {"$q",
      "($q, $@b)",
      "2.5",
      "$n",
      "($q, $@m)",
      "Sum($@s, $v)",
      "Avg($@s, $v)",
      "Min($@s, $v)",
      "Max($@s, $v)",
      "Count($@s)",
      "Count(CrossJoin({$q}, $@s), EXCLUDEEMPTY)",
      "$@s.Count",
      "($v + $v)",
      "($v - $v)",
      "($v * 1 * $v)",
      "($v / 4)",
      "-$v",
      "Abs(CoalesceEmpty($v, 1))",
      "CoalesceEmpty($v, $v)",
      "IIf($c, $v, $q)",
      "(Aggregate($r, $q) + 0)",
      "($v + $v - $v)",
      "NULL",
      "CASE WHEN $c THEN ($v + 0) WHEN $c THEN ($q + 0) ELSE ($v + 0) END",
      "CASE $n WHEN $n THEN ($v + 0) WHEN 2 THEN 1 END",
      "CASE $t WHEN $t THEN 1 ELSE ($v + 0) END",
      "Median($@s, $v)",
      "Median($@s, $q)",
      "Len($t)",
      "InStr(($t || \"-\"), $t)",
      "$@z",
      "$#d",
      "$@b.Level.Ordinal",
      "$@l.Ordinal",
      "($q, [2024].[Q1])",
      "($q, StrToMember(\"[Date].[All].[2024]\"))",
      "Count(StrToSet(\"{[Firma].[All].[1], [Firma].[All]}\"))"}},
    {'j', // a key above 0
     2,
     {"(CoalesceEmpty([Measures].[Lines], 0) + 1)", "(CoalesceEmpty(([Measures].[Lines], $@b), 0) + 1)"}},
    {'z', // numbers about one hierarchy
     2,
     {"Rank($b, $l.Members)", "Count(Exists($l.Members, {$b}))", "Rank($m, $s)", "Rank($e, $s, $k)",
      "Rank($e, Hierarchize($s))", "Stdev({$b, $l.Members}, CoalesceEmpty($q, 0))",
      "StddevP({$b, $l.Members}, CoalesceEmpty($q, 0))",
      "Var({$b, $l.Members}, CoalesceEmpty([Measures].[Lines], 0))",
      "VarianceP({$b, $l.Members}, CoalesceEmpty([Measures].[Lines], 0))",
      "Sum($s AS $A, $a.CurrentOrdinal)"}},
    {'d', // numbers about dates
     2,
     {"Sum({$b}, Sum(PeriodsToDate($l), $q))", "Sum({$b}, ($q, ParallelPeriod($l)))",
      "Sum({$b}, ($q, ParallelPeriod($l, $n)))"}},
    {'t', // texts
     4,
     {"\"abc\"",
      "\"1\"",
      "$@b.Name",
      "$@b.Caption",
      "Left($t, $n)",
      "Right($t, $n)",
      "Mid($t, 2, $n)",
      "Mid($t, 2)",
      "UCase($t)",
      "LCase($t)",
      "($t || $t)",
      "IIf($c, $t, $t)",
      "$@l.Name",
      "$@b.Level.Name",
      "$@b.Properties(\"MEMBER_CAPTION\")",
      "Format(CoalesceEmpty($q, 0), \"#,##0.00\")",
      "Format(CoalesceEmpty($q, 0), \"0.0;(0.0)\")",
      "Format($n / 16, \"Percent\")",
      "Format($n * 1000, \"#,##0\")",
      "Generate($@s, \"x\", \",\")",
      "CASE WHEN $c THEN $t ELSE \"none\" END"}},
    {'c',
     2,
     {"CoalesceEmpty($q, 0) > $x", "CoalesceEmpty($q, 0) <= $x", "IsEmpty($q)", "IsEmpty($v)",
      "CoalesceEmpty($v, 0) < $x", "NOT $c", "($c AND $c)", "($c OR $c)", "($c XOR $c)", "$@m IS $@m"}},
    {'w',
     3, // conditions on the scope's member
     {"$h.CurrentMember IS $b", "$h.CurrentMember.Name = \"1\"", "$h.CurrentMember.Caption > \"K\"", "NOT $w",
      "($w OR $c)", "$h.CurrentMember.Parent IS $b", "$h.CurrentMember.Children.Count > $n",
      "IsEmpty(($q, $h.CurrentMember.PrevMember))", "$h.CurrentMember.Level IS $l",
      "$h.CurrentMember.Level.Ordinal > $n", "$t = $h.CurrentMember.Name", "$t < $t",
      "Rank($h.CurrentMember, $s) > $n"}},
    {'k',
     3,
     {"CoalesceEmpty([Measures].[Lines], 0)", "CoalesceEmpty(([Measures].[Lines], $@b), 0)",
      "-CoalesceEmpty([Measures].[Lines], 0)"}},
    // a key that no two members of a level share: the server has an order of its own for ties
    {'u',
     1,
     {"(CoalesceEmpty([Measures].[Lines], 0) + Count(PeriodsToDate($h.[(All)], $h.CurrentMember)) / 1000 + "
      "Count(PeriodsToDate($2h.[(All)], $2h.CurrentMember)) / 1000000)"}},
    {'f',
     7,
     {"SELF", "AFTER", "BEFORE", "SELF_AND_AFTER", "SELF_AND_BEFORE", "BEFORE_AND_AFTER",
      "SELF_BEFORE_AFTER"}},
    {'q', 3, {"[Measures].[Amount]", "[Measures].[Lines]", "[Measures].[Quantity]"}},
    // no sum of cents or of thousandths equals these
    {'x', 4, {"0.00051", "100.00051", "-1000.00051", "25000.00051"}},
};

constexpr int mostDepth = 4;

const Rules& RulesOf(char symbol) {
    return *std::find_if(std::begin(grammar), std::end(grammar),
                         [symbol](const Rules& rules) { return rules.symbol == symbol; });
}

std::string DimensionOf(const std::string& hierarchy) { return hierarchy.substr(0, hierarchy.find(']')); }

} // namespace

std::string RandomStatements::Next() {
    used_.clear();
    if (OneIn(40)) {
        return NonEmptyPairs();
    }
    measures_.clear();
    named_.assign(hierarchies_.size(), "");
    calculated_.assign(hierarchies_.size(), "");
    usesCalculated_ = false;
    const std::string definitions = OneIn(2) ? "WITH" + Definitions() + " " : "";
    usesCalculated_ = true;
    std::string measures = "{[Measures].[Lines], [Measures].[Amount]}";
    for (const std::string& measure : measures_) {
        measures.insert(measures.size() - 1, ", " + measure);
    }
    const bool measuresAcross = !measures_.empty() || OneIn(2);
    std::string axes = (OneIn(3) ? "NON EMPTY " : "") + (measuresAcross ? measures : Axis()) + " ON COLUMNS";
    if (!OneIn(4)) {
        axes += ", " + std::string(OneIn(2) ? "NON EMPTY " : "") + Axis() + " ON ROWS";
    }
    usesCalculated_ = false;
    std::string where = OneIn(3) ? "" : Slicer();
    if (!measuresAcross && OneIn(2)) {
        where += (where.empty() ? "" : " * ") + std::string("{") + Fill("$q", {}, 0) + "}";
    }
    return definitions + "SELECT " + axes + " FROM [" + cube_ + "]" +
           (where.empty() ? "" : " WHERE " + where);
}

std::string RandomStatements::NonEmptyPairs() {
    const std::size_t first = UnusedHierarchy();
    const Scope scope{first, UnusedHierarchy()};
    return "SELECT {[Measures].[Lines]} ON COLUMNS, " +
           Fill("NonEmptyCrossJoin($l.Members, $2l.Members)", scope, 0) + " ON ROWS FROM [" + cube_ + "]";
}

std::size_t RandomStatements::UnusedHierarchy() {
    for (;;) {
        const std::size_t hierarchy = AnyHierarchy();
        const bool isUsed = std::any_of(used_.begin(), used_.end(), [&](std::size_t used) {
            return DimensionOf(hierarchies_[used].name) == DimensionOf(hierarchies_[hierarchy].name);
        });
        if (!isUsed) {
            used_.push_back(hierarchy);
            return hierarchy;
        }
    }
}

std::string RandomStatements::Definitions() {
    std::string text;
    if (OneIn(3)) {
        const std::size_t hierarchy = AnyHierarchy();
        text += " SET [Some] AS " + Fill("$s", {hierarchy, hierarchy}, 3);
        named_[hierarchy] = "[Some]";
    }
    if (OneIn(3)) {
        const std::size_t hierarchy = AnyHierarchy();
        const std::string parent =
            OneIn(3) ? hierarchies_[hierarchy].members.front().path : hierarchies_[hierarchy].name;
        const std::string name = parent + ".[Made]";
        text += " MEMBER " + name + " AS " +
                Fill(OneIn(3)   ? "Sum($s)"
                     : OneIn(2) ? "Aggregate({$r})"
                                : "($b + $b - $b)",
                     {hierarchy, hierarchy}, 2) +
                ", SOLVE_ORDER = 1";
        calculated_[hierarchy] = name;
    }
    for (std::size_t i = text.empty() ? 0 : Below(2); i < 2; ++i) {
        const std::string name = fmt::format("[Measures].[Told {}]", i);
        const char* kind = OneIn(4) ? "$t" : "$v";
        text += fmt::format(" MEMBER {} AS {}, SOLVE_ORDER = {}", name, Fill(kind, {}, mostDepth), i + 2);
        measures_.push_back(name);
    }
    return text;
}

std::string RandomStatements::Axis() {
    const std::size_t first = UnusedHierarchy();
    const bool isPair = OneIn(3);
    const Scope scope{first, isPair ? UnusedHierarchy() : first};
    const std::string set = Fill(isPair ? "$p" : "$s", scope, mostDepth);
    return fmt::format("{}({}, {})", OneIn(2) ? "Head" : "Tail", set, isPair ? 60 : 80);
}

std::string RandomStatements::Slicer() {
    const std::size_t first = UnusedHierarchy();
    const Scope scope{first, UnusedHierarchy()};
    static constexpr const char* shapes[] = {"{$b}", "{($b, $2b)}", "{$r}", "{$r} * {$2r}", "$l.Members"};
    const std::size_t count = hierarchies_[first].sharesFacts ? 2 : std::size(shapes);
    return Fill(shapes[Below(count)], scope, 1);
}

std::string RandomStatements::Fill(const std::string& rule, Scope scope, int depth) {
    std::string text;
    for (std::size_t i = 0; i < rule.size(); ++i) {
        if (rule[i] != '$') {
            text += rule[i];
            continue;
        }
        Scope inner = scope;
        if (rule[i + 1] == '2') {
            inner = {scope.second, scope.second};
            ++i;
        } else if (rule[i + 1] == '#') {
            inner = {0, 0};
            ++i;
        } else if (rule[i + 1] == '@') {
            const std::size_t any = AnyHierarchy();
            inner = {any, any};
            ++i;
        }
        text += Symbol(rule[++i], inner, depth);
    }
    return text;
}

std::string RandomStatements::Symbol(char symbol, Scope scope, int depth) {
    const StatedHierarchy& hierarchy = hierarchies_[scope.first];
    switch (symbol) {
    case 'h':
        return hierarchy.name;
    case 'l':
        return hierarchy.name + "." + hierarchy.levels[Below(hierarchy.levels.size())];
    case 'n':
        return std::to_string(Below(5));
    case 'A':
        return fmt::format("set{}", ++lastAlias_);
    case 'a':
        return fmt::format("set{}", lastAlias_);
    case 'b':
        return usesCalculated_ && !calculated_[scope.first].empty() && OneIn(3) ? calculated_[scope.first]
                                                                                : StoredMember(scope.first);
    case 'i':
        return hierarchy.members.front().path;
    case 'r':
        return Span(scope.first);
    default:
        break;
    }
    if (symbol == 's' && !named_[scope.first].empty() && OneIn(2)) {
        return named_[scope.first];
    }
    const Rules& rules = RulesOf(symbol);
    const bool isLeaf = depth <= 0 || OneIn(4);
    const char* rule = rules.rules[Below(isLeaf ? rules.leaves : rules.rules.size())];
    return Fill(rule, scope, depth - 1);
}

std::string RandomStatements::StoredMember(std::size_t hierarchy) {
    const std::vector<StatedHierarchy::Member>& members = hierarchies_[hierarchy].members;
    return members[Below(members.size())].path;
}

std::string RandomStatements::Span(std::size_t hierarchy) {
    const std::vector<StatedHierarchy::Member>& members = hierarchies_[hierarchy].members;
    const std::size_t level = members[Below(members.size())].level;
    std::vector<const StatedHierarchy::Member*> ofLevel;
    for (const StatedHierarchy::Member& member : members) {
        if (member.level == level) {
            ofLevel.push_back(&member);
        }
    }
    const std::size_t first = Below(ofLevel.size());
    const std::size_t last =
        hierarchies_[hierarchy].sharesFacts ? first : std::min(ofLevel.size() - 1, first + Below(6));
    return ofLevel[first]->path + " : " + ofLevel[last]->path;
}

} // namespace qel::test
