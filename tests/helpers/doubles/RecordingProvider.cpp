#include "tests/helpers/doubles/RecordingProvider.h"

#include "platform/data/InMemoryRecordset.h"
#include "platform/value/AutomationError.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

namespace qel::test {

namespace {

void FailIf(std::int32_t number) {
    if (number != 0) {
        throw AutomationError(number, "scripted failure", "RecordingProvider");
    }
}

void RequireOpen(const std::shared_ptr<Connection>& connection) {
    if (!connection || connection->State() != stateOpen) {
        throw AutomationError(3709, "no open connection", "RecordingProvider");
    }
}

template <class List>
auto& At(List& list, std::int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= list.size()) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    return list[static_cast<std::size_t>(index)];
}

template <class List>
auto& Named(List& list, const std::string& name) {
    for (auto& element : list) {
        if (EqualIgnoringCase(element.name, name)) {
            return element;
        }
    }
    throw AutomationError(3265, "no " + name, "RecordingProvider");
}

class RecordedConnection : public Connection {
public:
    explicit RecordedConnection(RecordingProvider& provider) : provider_(provider) {
        provider_.log.emplace_back("new connection");
    }
    ~RecordedConnection() override { provider_.log.emplace_back("release"); }
    RecordedConnection(const RecordedConnection&) = delete;
    RecordedConnection& operator=(const RecordedConnection&) = delete;

    void Open(const std::string& connectionString, const std::string& user, const std::string& password,
              int options) override {
        const bool plain = user.empty() && password.empty() && options == optionsUnspecified;
        provider_.log.push_back((plain ? "open " : "open with other options ") + connectionString);
        if (state_ == stateOpen) {
            throw AutomationError(3705, "already open", "RecordingProvider");
        }
        FailIf(provider_.failingOpen);
        connectionString_ = connectionString;
        state_ = stateOpen;
    }
    void Close() override {
        provider_.log.emplace_back("close");
        state_ = stateClosed;
    }
    int State() const override { return state_; }
    std::string ConnectionString() const override { return connectionString_; }

private:
    RecordingProvider& provider_;
    std::string connectionString_;
    int state_ = stateClosed;
};

class ScriptMember : public Member {
public:
    ScriptMember(const ScriptedDimension& dimension, std::size_t level, std::size_t index)
        : dimension_(dimension), level_(level), member_(dimension.levels[level].members[index]) {}

    std::string Name() const override { return member_.name; }
    std::string Caption() const override { return member_.name; }
    std::string UniqueName() const override { return member_.uniqueName; }
    std::unique_ptr<Member> Parent() const override {
        if (level_ == 0) {
            return nullptr;
        }
        return std::make_unique<ScriptMember>(dimension_, level_ - 1, member_.parent);
    }

private:
    const ScriptedDimension& dimension_;
    std::size_t level_;
    const ScriptedMember& member_;
};

class ScriptLevel : public Level {
public:
    ScriptLevel(const ScriptedDimension& dimension, std::size_t level)
        : dimension_(dimension), level_(level) {}

    std::string Name() const override { return dimension_.levels[level_].name; }
    std::string Caption() const override { return Name(); }
    std::int32_t MemberCount() const override {
        return static_cast<std::int32_t>(dimension_.levels[level_].members.size());
    }
    std::unique_ptr<Member> MemberAt(std::int32_t index) const override {
        At(dimension_.levels[level_].members, index);
        return std::make_unique<ScriptMember>(dimension_, level_, static_cast<std::size_t>(index));
    }

private:
    const ScriptedDimension& dimension_;
    std::size_t level_;
};

class ScriptHierarchy : public Hierarchy {
public:
    explicit ScriptHierarchy(const ScriptedDimension& dimension) : dimension_(dimension) {}

    std::string Name() const override { return dimension_.name; }
    std::string Caption() const override { return dimension_.name; }
    std::string UniqueName() const override { return "[" + dimension_.name + "]"; }
    std::int32_t LevelCount() const override { return static_cast<std::int32_t>(dimension_.levels.size()); }
    std::unique_ptr<Level> LevelAt(std::int32_t index) const override {
        At(dimension_.levels, index);
        return std::make_unique<ScriptLevel>(dimension_, static_cast<std::size_t>(index));
    }
    std::unique_ptr<Level> LevelNamed(const std::string& name) const override {
        const ScriptedLevel& level = Named(dimension_.levels, name);
        return std::make_unique<ScriptLevel>(dimension_,
                                             static_cast<std::size_t>(&level - dimension_.levels.data()));
    }

private:
    const ScriptedDimension& dimension_;
};

class ScriptDimension : public Dimension {
public:
    explicit ScriptDimension(const ScriptedDimension& dimension) : dimension_(dimension) {}

    std::string Name() const override { return dimension_.name; }
    std::string Caption() const override { return dimension_.name; }
    std::int32_t HierarchyCount() const override { return 1; }
    std::unique_ptr<Hierarchy> HierarchyAt(std::int32_t index) const override {
        if (index != 0) {
            throw PlatformError(ErrorNumber::SubscriptOutOfRange);
        }
        return std::make_unique<ScriptHierarchy>(dimension_);
    }

private:
    const ScriptedDimension& dimension_;
};

class ScriptCube : public CubeDef {
public:
    explicit ScriptCube(const RecordingProvider& provider) : provider_(provider) {}

    std::string Name() const override { return "Finance"; }
    std::int32_t DimensionCount() const override {
        return static_cast<std::int32_t>(provider_.dimensions.size());
    }
    std::unique_ptr<Dimension> DimensionAt(std::int32_t index) const override {
        return std::make_unique<ScriptDimension>(At(provider_.dimensions, index));
    }
    std::unique_ptr<Dimension> DimensionNamed(const std::string& name) const override {
        return std::make_unique<ScriptDimension>(Named(provider_.dimensions, name));
    }

private:
    const RecordingProvider& provider_;
};

class RecordedCatalog : public Catalog {
public:
    explicit RecordedCatalog(RecordingProvider& provider) : provider_(provider) {}

    void SetActiveConnection(const std::string& connectionString) override {
        provider_.log.push_back("catalog " + connectionString);
        FailIf(provider_.failingCatalog);
    }
    void SetActiveConnection(const std::shared_ptr<Connection>& connection) override {
        SetActiveConnection(connection->ConnectionString());
    }
    std::int32_t CubeCount() const override { return 1; }
    std::unique_ptr<CubeDef> CubeAt(std::int32_t index) const override {
        if (index != 0) {
            throw PlatformError(ErrorNumber::SubscriptOutOfRange);
        }
        return std::make_unique<ScriptCube>(provider_);
    }

private:
    RecordingProvider& provider_;
};

class RecordedCellset : public Cellset {
public:
    explicit RecordedCellset(RecordingProvider& provider) : provider_(provider) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override {
        provider_.log.push_back("statement " + source);
        RequireOpen(connection);
        FailIf(provider_.failingStatement);
    }
    void Close() override { provider_.log.emplace_back("close cellset"); }
    std::int32_t AxisCount() const override { return 2; }
    std::int32_t PositionCount(std::int32_t axis) const override {
        return axis == 1 ? static_cast<std::int32_t>(provider_.rowMembers.size()) : 1;
    }
    std::int32_t MemberCount(std::int32_t /*axis*/, std::int32_t /*position*/) const override { return 1; }
    CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const override {
        if (axis != 1 || index != 0) {
            throw PlatformError(ErrorNumber::SubscriptOutOfRange);
        }
        return At(provider_.rowMembers, position);
    }
    Variant Value(const std::vector<std::int32_t>& positions) const override {
        if (positions != std::vector<std::int32_t>{0, 0}) {
            throw PlatformError(ErrorNumber::SubscriptOutOfRange);
        }
        return provider_.cell;
    }

private:
    RecordingProvider& provider_;
};

/// Copies the rows of the script when it is opened.
class RecordedRecordset : public InMemoryRecordset {
public:
    explicit RecordedRecordset(RecordingProvider& provider)
        : InMemoryRecordset("RecordingProvider",
                            [&provider](const std::string& statement,
                                        const std::shared_ptr<Connection>& connection, const Progress&) {
                                RequireOpen(connection);
                                FailIf(provider.failingStatement);
                                const std::string& refused = provider.refusedWord;
                                FailIf(!refused.empty() && statement.find(refused) != std::string::npos ? 5
                                                                                                        : 0);
                                std::vector<std::string> fields(provider.recordFields, "field");
                                if (!fields.empty()) {
                                    fields.back() = provider.lastField;
                                }
                                return Rowset{std::move(fields), provider.recordRows};
                            }),
          provider_(provider) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
              int lockType, int options) override {
        const bool plain = cursorType == -1 && lockType == -1 && options == -1;
        provider_.log.push_back((plain ? "recordset " : "recordset with other options ") + source);
        InMemoryRecordset::Open(source, connection, cursorType, lockType, options);
    }
    void Close() override {
        provider_.log.emplace_back("close recordset");
        InMemoryRecordset::Close();
    }

private:
    RecordingProvider& provider_;
};

ScriptedLevel AllLevelOf(const std::string& name) { return {name, {{"All", "[" + name + "].[All]", 0}}}; }

} // namespace

std::shared_ptr<Connection> RecordingProvider::CreateConnection() {
    return std::make_shared<RecordedConnection>(*this);
}

std::unique_ptr<Catalog> RecordingProvider::CreateCatalog() {
    return std::make_unique<RecordedCatalog>(*this);
}

std::unique_ptr<Cellset> RecordingProvider::CreateCellset() {
    return std::make_unique<RecordedCellset>(*this);
}

std::unique_ptr<Recordset> RecordingProvider::CreateRecordset() {
    return std::make_unique<RecordedRecordset>(*this);
}

ScriptedDimension& RecordingProvider::DimensionScript(const std::string& name) {
    return Named(dimensions, name);
}

std::vector<std::string> RecordingProvider::Statements() const {
    const std::string start = "statement ";
    std::vector<std::string> statements;
    for (const std::string& line : log) {
        if (line.compare(0, start.size(), start) == 0) {
            statements.push_back(line.substr(start.size()));
        }
    }
    return statements;
}

std::vector<std::string> RecordingProvider::TakeLog() {
    std::vector<std::string> taken;
    taken.swap(log);
    return taken;
}

ScriptedDimension MonthlyDates(int firstYear, int firstMonth, int lastYear, int lastMonth) {
    ScriptedLevel years{"Year", {}};
    ScriptedLevel quarters{"Quarter", {}};
    ScriptedLevel months{"Month", {}};
    for (int year = firstYear, month = firstMonth; year * 12 + month <= lastYear * 12 + lastMonth;) {
        const std::string yearName = std::to_string(year);
        const std::string monthName = std::to_string(month);
        const std::string quarterName = fmt::format("Q{}", (month + 2) / 3);
        if (years.members.empty() || years.members.back().name != yearName) {
            years.members.push_back({yearName, fmt::format("[Date].[{}]", year), 0});
        }
        const std::size_t ofYear = years.members.size() - 1;
        if (quarters.members.empty() || quarters.members.back().name != quarterName ||
            quarters.members.back().parent != ofYear) {
            quarters.members.push_back(
                {quarterName, fmt::format("[Date].[{}].[{}]", year, quarterName), ofYear});
        }
        months.members.push_back(
            {monthName, fmt::format("[Date].[{}].[{}]", year, month), quarters.members.size() - 1});
        year += month / 12;
        month = month % 12 + 1;
    }
    return {"Date", {AllLevelOf("Date"), years, quarters, months}};
}

std::string ConnectionTextFor(const std::string& cubeFile, const std::string& cubeName) {
    return "Provider=MSOLAP;Data Source=" + cubeFile + ";Initial Catalog=" + cubeName +
           ";Client Cache Size=25;Auto Synch Period=10000";
}

RecordingProvider LedgerProvider() {
    RecordingProvider provider;
    provider.dimensions = {
        MonthlyDates(2019, 1, 2020, 12),
        {"ActX", {AllLevelOf("ActX"), {"OBSName", {{"1", "[ActX].[1]", 0}}}, {"OBSNumber", {}}}},
        {"OBS",
         {AllLevelOf("OBS"),
          {"Level1", {{"North", "[OBS].[All].[North]", 0}, {"South", "[OBS].[All].[South]", 0}}},
          {"Level2",
           {{"10", "[OBS].[All].[North].[10]", 0},
            {"Dan's", "[OBS].[All].[North].[Dan's]", 0},
            {"10", "[OBS].[All].[South].[10]", 1},
            {"Caf\xC3\x89", "[OBS].[All].[South].[Caf\xC3\x89]", 1}}}}}};
    return provider;
}

} // namespace qel::test
