#include "platform/value/AutomationError.h"
#include "tests/platform/data/xmla/RandomStatements.h"
#include "tests/platform/data/xmla/ServedLedger.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace qel::test {
namespace {

std::uint64_t NumberFrom(const char* variable, std::uint64_t otherwise) {
    const char* text = std::getenv(variable);
    return text ? std::stoull(text) : otherwise;
}

/// A provider with an open connection.
class Asker {
public:
    Asker(DataAccess& provider, const std::string& source, const std::string& cube)
        : provider_(provider), text_("Provider=MSOLAP;Data Source=" + source + ";Initial Catalog=" + cube) {
        Connect();
    }

    std::unique_ptr<Cellset> Ask(const std::string& statement) {
        auto cellset = provider_.CreateCellset();
        cellset->Open(statement, connection_);
        return cellset;
    }
    /// Null, with the error's description, when the statement fails. A server's fault may end the connection.
    std::unique_ptr<Cellset> Ask(const std::string& statement, std::string& error) {
        try {
            return Ask(statement);
        } catch (const AutomationError& failure) {
            error = failure.Description();
            Connect();
            return nullptr;
        }
    }

private:
    void Connect() {
        connection_ = provider_.CreateConnection();
        connection_->Open(text_, "", "", optionsUnspecified);
    }

    DataAccess& provider_;
    std::string text_;
    std::shared_ptr<Connection> connection_;
};

/// An answer in lines: the members of every axis, then the cells.
std::vector<std::string> Members(const Cellset& cellset) {
    std::vector<std::string> lines;
    for (std::int32_t axis = 0; axis < cellset.AxisCount(); ++axis) {
        for (std::int32_t position = 0; position < cellset.PositionCount(axis); ++position) {
            std::string line = fmt::format("axis {}:", axis);
            for (std::int32_t i = 0; i < cellset.MemberCount(axis, position); ++i) {
                const CellsetMember member = cellset.MemberAt(axis, position, i);
                line += fmt::format(" {} ({}, {} {})", member.name, member.caption.value_or("Null"),
                                    member.levelName, member.levelDepth);
            }
            lines.push_back(line);
        }
    }
    return lines;
}

std::vector<Variant> Cells(const Cellset& cellset) {
    std::vector<Variant> cells;
    std::vector<std::int32_t> position(static_cast<std::size_t>(cellset.AxisCount()));
    for (;;) {
        for (std::int32_t axis = 0; axis < cellset.AxisCount(); ++axis) {
            if (cellset.PositionCount(axis) == 0) {
                return cells;
            }
        }
        cells.push_back(cellset.Value(position));
        std::size_t axis = 0;
        while (axis < position.size() &&
               ++position[axis] == cellset.PositionCount(static_cast<std::int32_t>(axis))) {
            position[axis++] = 0;
        }
        if (axis == position.size()) {
            return cells;
        }
    }
}

std::string Shown(const Variant& value) {
    return value.Is<Null>()          ? "-"
           : value.Is<double>()      ? fmt::format("{}", value.As<double>())
           : value.Is<std::string>() ? "'" + value.As<std::string>() + "'"
                                     : value.TypeName();
}

double NumberOf(const Variant& value) {
    if (value.Is<double>()) {
        return value.As<double>();
    }
    if (value.Is<std::int32_t>()) {
        return value.As<std::int32_t>();
    }
    if (value.Is<std::int16_t>()) {
        return value.As<std::int16_t>();
    }
    return std::nan("");
}

bool SameValue(const Variant& a, const Variant& b) {
    if (a.Is<Null>() || b.Is<Null>()) {
        return a.Is<Null>() && b.Is<Null>();
    }
    if (a.Is<std::string>() && b.Is<std::string>()) {
        return a.As<std::string>() == b.As<std::string>();
    }
    const double left = NumberOf(a), right = NumberOf(b);
    return left == right || std::abs(left - right) < 0.0005 + 1e-9 * std::abs(left);
}

/// Empty when they are the same, else what differs first.
std::string Difference(const Cellset& local, const Cellset& served) {
    const auto localMembers = Members(local), servedMembers = Members(served);
    for (std::size_t i = 0; i < std::max(localMembers.size(), servedMembers.size()); ++i) {
        const std::string left = i < localMembers.size() ? localMembers[i] : "nothing";
        const std::string right = i < servedMembers.size() ? servedMembers[i] : "nothing";
        if (left != right) {
            return fmt::format("position {}: here {}; there {}", i, left, right);
        }
    }
    const auto localCells = Cells(local), servedCells = Cells(served);
    for (std::size_t i = 0; i < localCells.size(); ++i) {
        if (!SameValue(localCells[i], servedCells[i])) {
            return fmt::format("cell {}: here {}; there {}", i, Shown(localCells[i]), Shown(servedCells[i]));
        }
    }
    return "";
}

/// The hierarchies of the cube, except for those that few facts tell apart, and for that of account names, in
/// which the server confuses two accounts of one name. The server is asked for all
/// members first: it numbers them when it first reads them, and with some of them missing it orders them
/// wrongly.
std::vector<StatedHierarchy> HierarchiesOf(Asker& local, Asker& served, const std::string& cube) {
    std::vector<StatedHierarchy> found;
    for (const char* name :
         {"[Date].[Date]", "[ActX].[OBSx]", "[OBS].[OBS]", "[Cost_Centers].[Cost_Centers]",
          "[Activities].[ActivityCodes]", "[Accounts].[AccountCodes]", "[SuperSumery].[SumeryCode]",
          "[SuperSumery].[SumeryName]", "[AccX].[AccX]", "[Firma].[Firma]", "[RH].[RH]"}) {
        StatedHierarchy& hierarchy = found.emplace_back();
        hierarchy.name = name;
        hierarchy.sharesFacts = hierarchy.name == "[ActX].[OBSx]";
        const std::string statement = fmt::format("SELECT {}.Members ON 0 FROM [{}]", name, cube);
        const auto all = local.Ask(statement);
        EXPECT_EQ(Difference(*all, *served.Ask(statement)), "") << name;
        for (std::int32_t i = 0; i < all->PositionCount(0); ++i) {
            const CellsetMember member = all->MemberAt(0, i, 0);
            const auto level = static_cast<std::size_t>(member.levelDepth);
            hierarchy.levels.resize(std::max(hierarchy.levels.size(), level + 1));
            hierarchy.levels[level] = "[" + member.levelName + "]";
            if (member.uniqueName.find("&[") ==
                std::string::npos) { // the server's keys are numbers of its own
                hierarchy.members.push_back({member.uniqueName, level});
            }
        }
    }
    return found;
}

/// Whether the server failed in its own program, instead of refusing the statement.
bool IsFaultOf(const std::string& error) {
    const auto has = [&error](const char* text) { return error.find(text) != std::string::npos; };
    return has("Cannot invoke") || has("/ by zero") || has("java.lang.") || has("ResultStyles") ||
           has("Internal error") || has("cannot be cast");
}

TEST(StatementAgreement, RandomStatementsEqualTheEmbeddedEngine) {
    ServedLedger ledger;
    const std::uint64_t count = NumberFrom("QEL_STATEMENTS", 300),
                        seed = NumberFrom("QEL_STATEMENT_SEED", 20261122);
    std::uint64_t answered = 0, refusedByBoth = 0, serverFaults = 0, differences = 0, cells = 0, filled = 0;
    for (const char* cube : {"LedgerFNC", "LedgerHebrewFNC"}) {
        Asker local(ledger.embedded, ledger.cubeFile, cube), served(ledger.servers, ledger.server, cube);
        RandomStatements statements(cube, HierarchiesOf(local, served, cube), seed);
        for (std::uint64_t i = 0; i < count / 2; ++i) {
            const std::string statement = statements.Next();
            std::string localError, servedError;
            const auto localAnswer = local.Ask(statement, localError),
                       servedAnswer = served.Ask(statement, servedError);
            std::string difference;
            if (localError.empty() && servedError.empty()) {
                difference = Difference(*localAnswer, *servedAnswer);
                ++answered;
                for (const Variant& cell : Cells(*localAnswer)) {
                    ++cells;
                    filled += cell.Is<Null>() ? 0U : 1U;
                }
            } else if (localError.empty() && IsFaultOf(servedError)) {
                ++serverFaults;
            } else if (localError.empty() != servedError.empty()) {
                difference = fmt::format("here {}; there {}", localError, servedError);
            } else {
                ++refusedByBoth;
            }
            if (!difference.empty()) {
                ++differences;
                ADD_FAILURE() << cube << " " << i << "\n" << statement << "\n" << difference;
            }
        }
    }
    fmt::print("{} statements answered, {} refused by both, {} ended by faults of the server, {} "
               "differences; {} cells, "
               "{} of them not empty\n",
               answered, refusedByBoth, serverFaults, differences, cells, filled);
    EXPECT_GE(answered, count * 9 / 10);
    EXPECT_GE(filled, cells / 4);
}

} // namespace
} // namespace qel::test
