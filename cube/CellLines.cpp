#include "cube/CellLines.h"

#include "cube/ValueStatement.h"
#include "platform/data/DataAccess.h"
#include "platform/value/AutomationError.h"
#include "text/CaseFold.h"
#include "text/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>

namespace qel::ModSetCube {

namespace {

std::string Opening(std::uint64_t most) {
    return "DRILLTHROUGH " + (most == 0 ? std::string() : "MAXROWS " + std::to_string(most) + " ");
}

std::string Bracketed(const std::string& name) { return '[' + ReplaceAll(name, "]", "]]") + ']'; }

/// A path or a function stays as it is; a plain name gets its brackets.
std::string ReturnedColumn(const std::string& column) {
    return column.find_first_of("[(") == std::string::npos ? Bracketed(column) : column;
}

/// The columns that were asked for, and the amounts that the value adds up.
std::string ReturnClause(const ValueQuery& query, const LinesRequest& request) {
    std::string text;
    bool hasAmount = request.columns.empty();
    for (const std::string& asked : request.columns) {
        const std::string column(Trimmed(asked));
        text += (text.empty() ? " RETURN " : ", ") + ReturnedColumn(column);
        hasAmount = hasAmount || EqualIgnoringCase(column, query.measure) ||
                    EqualIgnoringCase(column, Bracketed(query.measure)) ||
                    EqualIgnoringCase(column, "[Measures]." + Bracketed(query.measure));
    }
    return hasAmount ? text : text + ", [Measures]." + Bracketed(query.measure);
}

std::string PlainStatement(const ValueQuery& query, const std::string& period, const std::string& obsMember,
                           const LinesRequest& request) {
    std::string text = Opening(request.most) + "SELECT {[Measures].[" + query.measure + "]} ON COLUMNS, {" +
                       period + "} ON ROWS From " + query.cubeName + " where (";
    for (const QueryMember& member : SlicerMembers(query)) {
        if (member.nameCount == 0) {
            text += obsMember;
        } else {
            AppendMember(text, member);
        }
        text += ", ";
    }
    AppendMember(text, SummaryMember(query).value_or(QueryMember{"[SuperSumery].[SumeryCode]", {}, 0}));
    return text + ')' + ReturnClause(query, request);
}

/// "Amount", or a unique name that ends with it.
std::optional<std::size_t> FieldOfMeasure(const Rowset& rows, const std::string& measure) {
    const std::string ending = FoldCase('[' + measure + ']');
    for (std::size_t field = 0; field < rows.fields.size(); ++field) {
        const std::string& name = rows.fields[field];
        if (EqualIgnoringCase(name, measure) || FoldCase(name).ends_with(ending)) {
            return field;
        }
    }
    return std::nullopt;
}

/// Adds decimals of up to nine places exactly: whole parts and billionths by themselves. What is too large
/// for that is added as doubles are.
class DecimalSum {
public:
    void Add(double number) {
        const double magnitude = std::abs(number);
        if (!(magnitude < mostWholes)) {
            beyond_ += number;
            return;
        }
        std::array<char, 64> digits;
        const auto end =
            std::to_chars(digits.data(), digits.data() + digits.size(), magnitude, std::chars_format::fixed)
                .ptr;
        const std::string_view text(digits.data(), static_cast<std::size_t>(end - digits.data()));
        const std::size_t point = std::min(text.find('.'), text.size());
        constexpr std::size_t places = 9;
        std::string fraction(text.substr(std::min(point + 1, text.size())));
        fraction.resize(places, '0');
        const std::int64_t sign = number < 0 ? -1 : 1;
        wholes_ += sign * NumberOf(text.substr(0, point));
        billionths_ += sign * NumberOf(fraction);
        if (static_cast<double>(std::abs(wholes_)) >= mostWholes) {
            beyond_ += static_cast<double>(wholes_);
            wholes_ = 0;
        }
    }

    double Total() const {
        std::int64_t wholes = wholes_ + billionths_ / billion, rest = billionths_ % billion;
        if (wholes > 0 && rest < 0) {
            --wholes, rest += billion;
        } else if (wholes < 0 && rest > 0) {
            ++wholes, rest -= billion;
        }
        std::string fraction = std::to_string(std::abs(rest));
        fraction.insert(0, 9 - fraction.size(), '0');
        const std::string text = std::to_string(std::abs(wholes)) + '.' + fraction;
        double total = 0;
        std::from_chars(text.data(), text.data() + text.size(), total);
        return beyond_ + (wholes < 0 || rest < 0 ? -total : total);
    }

private:
    static constexpr std::int64_t billion = 1'000'000'000;
    static constexpr double mostWholes = 4e18; // the sum of two such numbers is still an integer of 64 bits

    static std::int64_t NumberOf(std::string_view digits) {
        std::int64_t number = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
        return number;
    }

    std::int64_t wholes_ = 0, billionths_ = 0;
    double beyond_ = 0;
};

class LinesReader {
public:
    LinesReader(const ThreadState& thread, const Providers& providers, const LinesRequest& request)
        : thread_(thread), providers_(providers), request_(request) {}

    Rowset Read(const std::string& statement) const {
        providers_.Sending(statement);
        const auto recordset = thread_.provider->CreateRecordset();
        recordset->ReportTo(request_.progress);
        recordset->Open(statement, thread_.CubeConnection, optionsUnspecified, optionsUnspecified,
                        optionsUnspecified);
        Rowset rows = ReadRows(*recordset);
        recordset->Close();
        return rows;
    }

    /// The answers of plain statements below each other.
    Rowset ReadAll(const std::vector<std::string>& statements) const {
        Rowset all;
        for (const std::string& statement : statements) {
            Rowset rows = Read(statement);
            const bool isFirst = all.fields.empty();
            if (isFirst) {
                all.fields = std::move(rows.fields);
            }
            all.total = rows.total && (isFirst || all.total)
                            ? std::optional(all.total.value_or(0) + *rows.total)
                            : std::nullopt;
            all.rows.insert(all.rows.end(), std::make_move_iterator(rows.rows.begin()),
                            std::make_move_iterator(rows.rows.end()));
            if (request_.most != 0 && all.rows.size() >= request_.most && !all.total) {
                break;
            }
        }
        return all;
    }

private:
    const ThreadState& thread_;
    const Providers& providers_;
    const LinesRequest& request_;
};

} // namespace

std::string ComposeLinesStatement(const ValueQuery& query, const LinesRequest& request) {
    return Opening(request.most) + ComposeValueStatement(query) + ReturnClause(query, request);
}

std::vector<std::string> ComposePlainLinesStatements(const ValueQuery& query, const DateTable& dates,
                                                     const LinesRequest& request) {
    const auto& names = dates.CubeDateNames;
    const auto last = std::find(names.begin(), names.end(), query.span.last);
    const auto end = last == names.end() ? last : last + 1;
    const auto count = std::min<std::ptrdiff_t>(query.span.count, end - names.begin());
    const ObsMembers onlyOne{""};
    std::vector<std::string> statements;
    for (auto period = end - count; period != end; ++period) {
        for (const std::string& member : query.obsMembers ? *query.obsMembers : onlyOne) {
            statements.push_back(PlainStatement(query, *period, member, request));
        }
    }
    return statements;
}

CellLines ReadCellLines(const ThreadState& thread, const Providers& providers, const ValueQuery& query,
                        const LinesRequest& request) {
    const LinesReader reader(thread, providers, request);
    CellLines lines;
    try {
        lines.rows = reader.Read(ComposeLinesStatement(query, request));
    } catch (const AutomationError&) {
        const auto statements = ComposePlainLinesStatements(query, thread.dates, request);
        if (statements.empty()) {
            throw;
        }
        lines.rows = reader.ReadAll(statements);
    }
    auto& rows = lines.rows.rows;
    const bool isUnknown = !lines.rows.total && request.most != 0 && rows.size() >= request.most;
    if (request.most != 0 && rows.size() > request.most) {
        rows.resize(request.most);
    }
    lines.isComplete = !isUnknown && lines.rows.total.value_or(rows.size()) == rows.size();
    lines.amount = FieldOfMeasure(lines.rows, query.measure);
    return lines;
}

Rowset ReadRows(Recordset& recordset) {
    Rowset rows;
    for (std::int32_t field = 0; field < recordset.FieldCount(); ++field) {
        rows.fields.push_back(recordset.FieldName(field));
    }
    for (; !recordset.AtEnd(); recordset.MoveNext()) {
        auto& row = rows.rows.emplace_back();
        for (std::int32_t field = 0; field < recordset.FieldCount(); ++field) {
            row.push_back(recordset.FieldValue(field));
        }
    }
    rows.total = recordset.TotalRows();
    return rows;
}

double SumOfField(const Rowset& rows, std::size_t field) {
    DecimalSum sum;
    for (const auto& row : rows.rows) {
        if (row[field].Is<double>()) {
            sum.Add(row[field].As<double>());
        }
    }
    return sum.Total();
}

} // namespace qel::ModSetCube
