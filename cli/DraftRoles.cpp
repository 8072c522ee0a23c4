#include "cli/DraftRoles.h"

#include "text/CaseFold.h"

#include <algorithm>
#include <cctype>

namespace qel {

namespace {

using Words = std::vector<std::string>;

/// Words by which a header is recognised; of several headers the one with the earlier words.
struct RoleWords {
    ColumnRole role;
    std::vector<Words> headers;
};

const std::vector<RoleWords>& KnownWords() {
    static const std::vector<RoleWords> known = {
        {ColumnRole::ObsNumber, {{"obs", "number"}}},
        {ColumnRole::OpeningBalance, {{"opening"}, {"פתיחה"}}},
        {ColumnRole::MoneySet, {{"money", "set"}, {"currency"}, {"מטבע"}}},
        {ColumnRole::Plbs, {{"plbs"}}},
        {ColumnRole::Rh, {{"rh"}}},
        {ColumnRole::CostCentre,
         {{"cost", "centre"},
          {"cost", "center"},
          {"costcentre"},
          {"costcenter"},
          {"business", "unit"},
          {"organisation", "code"},
          {"organization", "code"},
          {"centre"},
          {"center"},
          {"department"},
          {"dept"},
          {"מרכז"},
          {"מחלקה"}}},
        {ColumnRole::Account,
         {{"account"},
          {"acct"},
          {"nominal"},
          {"expense"},
          {"object"},
          {"gl"},
          {"חשבון"},
          {"כרטיס"},
          {"סעיף"}}},
        {ColumnRole::Activity,
         {{"activity"},
          {"project"},
          {"category"},
          {"proclass"},
          {"task"},
          {"פעילות"},
          {"פרויקט"},
          {"קטגוריה"}}},
        {ColumnRole::Firm, {{"firm"}, {"company"}, {"entity"}, {"body"}, {"חברה"}, {"פירמה"}, {"גוף"}}},
        {ColumnRole::Obs,
         {{"obs"},
          {"directorate"},
          {"portfolio"},
          {"division"},
          {"region"},
          {"branch"},
          {"organisational", "unit"},
          {"service"},
          {"segment"},
          {"unit"},
          {"department"},
          {"dept"},
          {"אגף"},
          {"מחלקה"},
          {"מדור"},
          {"אזור"},
          {"סניף"},
          {"יחידה"},
          {"שירות"}}},
    };
    return known;
}

const Words amountWords = {"amount", "value", "net", "sum", "total", "סכום", "ערך"};
const Words debitWords = {"debit", "dr", "חובה"};
const Words creditWords = {"credit", "cr", "זכות"};
const Words nameWords = {"name", "description", "desc", "title", "text", "שם", "תיאור", "תאור"};
const Words codeWords = {"code", "no", "number", "num", "id", "key", "קוד", "מספר", "מס"};

std::string Singular(std::string word) {
    if (word.ends_with("ies")) {
        word.replace(word.size() - 3, 3, "y");
    } else if (word.size() > 3 && word.ends_with('s')) {
        word.pop_back();
    }
    return word;
}

bool Contains(const Words& words, const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

bool ContainsAll(const Words& words, const Words& parts) {
    return std::all_of(parts.begin(), parts.end(),
                       [&](const auto& part) { return Contains(words, Singular(part)); });
}

bool ContainsAny(const Words& words, const Words& some) {
    return std::any_of(some.begin(), some.end(), [&](const auto& word) { return Contains(words, word); });
}

/// In lower case, plurals as singulars. Letters beyond ASCII are part of words.
Words WordsOf(std::string_view header) {
    Words words;
    std::string word;
    for (const char c : FoldCase(header) + ' ') {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x80 || std::isalnum(byte) != 0) {
            word += c;
        } else if (!word.empty()) {
            words.push_back(Singular(word));
            word.clear();
        }
    }
    return words;
}

/// Whether the values look like codes or names of something: no dates, no amounts.
bool MayBeKey(const engine::SourceColumn& column) {
    return !column.isRepeated && !column.isDate && column.distinct > 0 &&
           (!column.isAmount || column.isWhole);
}

class RoleFinder {
public:
    explicit RoleFinder(const engine::SourceProfile& file) : file_(file), isNameOf_(file.columns.size()) {
        for (std::size_t i = 0; i < file.columns.size(); ++i) {
            const bool isCode = MayBeKey(file.columns[i]) && !IsNameHeader(file.columns[i].name);
            if (const auto names = isCode ? FindNames(file, i) : std::nullopt) {
                isNameOf_[*names] = true;
            }
        }
    }

    FoundRoles Find() {
        TakeBest(ColumnRole::Date, [](const auto& column) { return column.isDate ? 1 : 0; });
        TakeBest(ColumnRole::Amount, [this](const auto& column) { return AmountScore(column); });
        const auto amount = found_.Of(ColumnRole::Amount);
        if (amount && ContainsAny(WordsOf(file_.columns[*amount].name), debitWords)) {
            TakeBest(ColumnRole::Credit,
                     [](const auto& column) { return IsSide(column, creditWords) ? 1 : 0; });
        }
        for (const auto& known : KnownWords()) {
            TakeNamed(known);
        }
        if (!found_.Of(ColumnRole::Account)) {
            GuessAccount();
        }
        std::sort(found_.columns.begin(), found_.columns.end(),
                  [](const auto& left, const auto& right) { return left.column < right.column; });
        return found_;
    }

private:
    /// A column of debits or credits. In a ledger of one side the other column is empty.
    static bool IsSide(const engine::SourceColumn& column, const Words& side) {
        return (column.isAmount || column.isEmpty) && !column.isRepeated &&
               ContainsAny(WordsOf(column.name), side);
    }

    bool HasSide(const Words& side) const {
        return std::any_of(file_.columns.begin(), file_.columns.end(),
                           [&](const auto& column) { return IsSide(column, side); });
    }

    bool HasAmountsOf(const Words& side) const {
        return std::any_of(file_.columns.begin(), file_.columns.end(),
                           [&](const auto& column) { return column.isAmount && IsSide(column, side); });
    }

    int AmountScore(const engine::SourceColumn& column) const {
        const auto words = WordsOf(column.name);
        const bool isDebit = IsSide(column, debitWords) && (column.isAmount || HasAmountsOf(creditWords));
        const bool isCredit = ContainsAny(words, creditWords) && HasSide(debitWords);
        if (!(column.isAmount || isDebit) || column.isRepeated || isCredit) {
            return 0;
        }
        const bool isNamed = ContainsAny(words, amountWords);
        return isNamed ? 3 : isDebit ? 2 : column.decimals > 0 ? 1 : 0;
    }

    bool IsFree(std::size_t column) const {
        return !isNameOf_[column] && std::none_of(found_.columns.begin(), found_.columns.end(),
                                                  [&](const auto& found) { return found.column == column; });
    }

    template <class Score>
    void TakeBest(ColumnRole role, const Score& score) {
        std::size_t best = 0;
        int most = 0;
        for (std::size_t i = 0; i < file_.columns.size(); ++i) {
            const int found = IsFree(i) ? score(file_.columns[i]) : 0;
            if (found > most) {
                best = i;
                most = found;
            }
        }
        if (most > 0) {
            found_.columns.push_back({role, best});
        }
    }

    void TakeNamed(const RoleWords& known) {
        for (const auto& header : known.headers) {
            for (std::size_t i = 0; i < file_.columns.size(); ++i) {
                const auto& column = file_.columns[i];
                if (IsFree(i) && MayBeKey(column) && ContainsAll(WordsOf(column.name), header)) {
                    found_.columns.push_back({known.role, i});
                    if (known.role != ColumnRole::Obs) {
                        return;
                    }
                }
            }
        }
    }

    /// The column with the most values that repeat enough, those with names first.
    void GuessAccount() {
        TakeBest(ColumnRole::Account, [&](const auto& column) {
            if (!MayBeKey(column) || column.distinct * 2 > file_.lines) {
                return 0;
            }
            const auto index = static_cast<std::size_t>(&column - file_.columns.data());
            constexpr int withNames = 1'000'000;
            return static_cast<int>(std::min<std::size_t>(column.distinct, withNames - 1)) +
                   (FindNames(file_, index) ? withNames : 0);
        });
        found_.accountIsGuess = found_.Of(ColumnRole::Account).has_value();
    }

    const engine::SourceProfile& file_;
    std::vector<bool> isNameOf_; ///< by column: it has the names of another one
    FoundRoles found_;
};

} // namespace

std::optional<std::size_t> FoundRoles::Of(ColumnRole role) const {
    const auto all = AllOf(role);
    return all.empty() ? std::nullopt : std::optional(all.front());
}

std::vector<std::size_t> FoundRoles::AllOf(ColumnRole role) const {
    std::vector<std::size_t> all;
    for (const auto& found : columns) {
        if (found.role == role) {
            all.push_back(found.column);
        }
    }
    return all;
}

FoundRoles FindRoles(const engine::SourceProfile& file) { return RoleFinder(file).Find(); }

bool IsNameHeader(std::string_view header) {
    const auto words = WordsOf(header);
    return std::any_of(words.begin(), words.end(),
                       [](const auto& word) { return Contains(nameWords, word); });
}

std::optional<std::size_t> FindNames(const engine::SourceProfile& file, std::size_t codes) {
    const auto isNames = [&](std::size_t i) {
        return i < file.columns.size() && i != codes && !file.columns[i].isRepeated &&
               !file.columns[i].isDate && IsNameHeader(file.columns[i].name);
    };
    const auto subject = SubjectOf(file.columns[codes].name);
    for (std::size_t i = 0; i < file.columns.size(); ++i) {
        if (isNames(i) && SubjectOf(file.columns[i].name) == subject) {
            return i;
        }
    }
    return isNames(codes + 1) ? std::optional(codes + 1) : std::nullopt;
}

std::vector<std::string> SubjectOf(std::string_view header) {
    auto words = WordsOf(header);
    std::erase_if(words,
                  [](const auto& word) { return Contains(nameWords, word) || Contains(codeWords, word); });
    return words;
}

} // namespace qel
