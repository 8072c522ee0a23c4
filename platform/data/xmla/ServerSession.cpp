#include "platform/data/xmla/ServerSession.h"

#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/SoapAnswer.h"
#include "platform/data/xmla/StatementForServer.h"
#include "text/CaseFold.h"
#include "text/NameList.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace qel {

namespace {

constexpr long statusOk = 200;
constexpr const char* catalogRestriction = "CATALOG_NAME";

/// Mondrian sometimes loses a server instance to garbage collection; a second request succeeds.
constexpr std::string_view forgottenInstance = "No server instance";

AutomationError StatusError(const HttpHead& head, const std::string& url) {
    switch (head.status) {
    case 401:
        return ServerError(errorServerAccess,
                           fmt::format("{} requires a user and a password, or rejects those that were sent "
                                       "(HTTP status 401).",
                                       url));
    case 403:
        return ServerError(errorServerAccess, fmt::format("{} denies access (HTTP status 403).", url));
    case 404:
        return ServerError(
            errorServerAnswer,
            fmt::format("{} has nothing at that path (HTTP status 404); XMLA servers have paths such "
                        "as /xmla or /olap/msmdpump.dll.",
                        url));
    default:
        return ServerError(errorServerAnswer,
                           fmt::format("{} answered with HTTP status {}.", url, head.status));
    }
}

int NumberOf(const RowsetAnswer& rows, std::size_t row, const char* field) {
    const std::string text = rows.Text(row, field);
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// Row indexes, ordered by a numeric field.
std::vector<std::size_t> RowsBy(const RowsetAnswer& rows, const char* field) {
    std::vector<std::size_t> order(rows.RowCount());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return NumberOf(rows, left, field) < NumberOf(rows, right, field);
    });
    return order;
}

/// What a row of a server's description cannot do without.
std::string NameIn(const RowsetAnswer& rows, std::size_t row, const char* field) {
    std::string name = rows.Text(row, field);
    if (name.empty()) {
        throw ServerError(errorServerAnswer, fmt::format("The server's answer has a row without {}.", field));
    }
    return name;
}

std::string CaptionOf(const RowsetAnswer& rows, std::size_t row, const char* field, const std::string& name) {
    const std::string caption = rows.Text(row, field);
    return caption.empty() ? name : caption;
}

template <class Item>
Item* FindByUniqueName(std::vector<Item>& items, const std::string& uniqueName) {
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&](const Item& item) { return item.uniqueName == uniqueName; });
    return found == items.end() ? nullptr : &*found;
}

/// The parts of a cube are matched with each other: a description of a million would never be read.
void RequireOrdinaryNumber(const RowsetAnswer& parts) {
    constexpr std::size_t mostParts = 10'000;
    if (parts.RowCount() > mostParts) {
        throw ServerError(
            errorServerAnswer,
            fmt::format("The server describes a cube of {} dimensions, hierarchies or levels; {} are the "
                        "limit.",
                        parts.RowCount(), mostParts));
    }
}

std::string Listed(const std::vector<std::string>& names) {
    return names.empty() ? "none" : ShownMessage(NameList(names, "'"));
}

} // namespace

template <class Answer>
Answer ServerSession::Ask(const std::string& body, const char* action) {
    try {
        Answer answer{AnswerBudget(channels_.Limits().answerBytes)};
        AskOnce(body, action, answer);
        return answer;
    } catch (const AutomationError& error) {
        if (error.Number() != errorServerFault ||
            error.Description().find(forgottenInstance) == std::string::npos) {
            throw;
        }
    }
    Answer answer{AnswerBudget(channels_.Limits().answerBytes)};
    AskOnce(body, action, answer);
    return answer;
}

void ServerSession::AskOnce(const std::string& body, const char* action, XmlHandler& content) {
    const auto start = std::chrono::steady_clock::now();
    try {
        auto channel = channels_.Take();
        SoapAnswer soap(content);
        XmlStream xml(soap, channels_.Limits());
        bool isReadable = true;
        const HttpHead head = channel->Post(body, action, [&](long status, std::string_view piece) {
            try {
                if (isReadable) {
                    xml.Read(piece);
                }
            } catch (const AutomationError&) {
                if (status == statusOk) {
                    throw;
                }
                isReadable = false; // the body of an error status need not be XML
            }
        });
        if (head.status == statusOk) {
            xml.Finish();
        }
        if (!soap.Fault().empty()) {
            channels_.Return(std::move(channel));
            throw ServerError(errorServerFault, "The server says: " + ShownMessage(soap.Fault()));
        }
        if (head.status != statusOk) {
            throw StatusError(head, Url());
        }
        channels_.Return(std::move(channel));
    } catch (const AutomationError& error) {
        if (IsLostServer(error)) {
            isLost_ = true;
            if (onLoss_) {
                onLoss_(error, std::chrono::steady_clock::now() - start);
            }
        }
        throw;
    }
}

std::vector<std::string> ServerSession::Catalogs() {
    const auto rows = Discover("DBSCHEMA_CATALOGS", {});
    std::vector<std::string> names;
    for (std::size_t row = 0; row < rows.RowCount(); ++row) {
        names.push_back(rows.Text(row, catalogRestriction));
    }
    return names;
}

void ServerSession::RequireCatalog() {
    const auto names = Catalogs();
    const std::scoped_lock lock(metadata_);
    if (catalog_.empty()) {
        return;
    }
    const auto found = std::find_if(names.begin(), names.end(),
                                    [this](const auto& name) { return EqualIgnoringCase(name, catalog_); });
    if (found == names.end()) {
        throw ServerError(errorUnknownCube,
                          fmt::format("{} has no catalog '{}'; it has {}. Formulas give a catalog's "
                                      "name as the cube's name.",
                                      Url(), catalog_, Listed(names)));
    }
    catalog_ = *found;
}

std::vector<std::string> ServerSession::CubesOf(const std::string& catalog) {
    const auto rows = Discover("MDSCHEMA_CUBES", {{catalogRestriction, catalog}});
    std::vector<std::string> names;
    for (std::size_t row = 0; row < rows.RowCount(); ++row) {
        // Analysis Services also lists every dimension as a cube.
        const std::string name = rows.Text(row, "CUBE_NAME");
        if (!name.starts_with("$")) {
            names.push_back(name);
        }
    }
    std::stable_partition(names.begin(), names.end(),
                          [&catalog](const auto& name) { return EqualIgnoringCase(name, catalog); });
    return names;
}

XmlaPairs ServerSession::CubeRestrictions() const {
    return {{catalogRestriction, catalog_}, {"CUBE_NAME", cube_->name}};
}

const ServerCube& ServerSession::Cube() {
    const std::scoped_lock lock(metadata_);
    if (!cube_) {
        try {
            LoadCube();
        } catch (const AutomationError&) {
            cube_.reset();
            throw;
        }
    }
    return *cube_;
}

void ServerSession::LoadCube() {
    const auto names = CubeNames();
    if (names.empty()) {
        throw ServerError(errorUnknownCube,
                          fmt::format("The catalog '{}' of {} has no cube.", catalog_, Url()));
    }
    cube_.emplace();
    cube_->name = cube_->caption = names.front();
    const auto dimensions = Discover("MDSCHEMA_DIMENSIONS", CubeRestrictions());
    RequireOrdinaryNumber(dimensions);
    for (const std::size_t row : RowsBy(dimensions, "DIMENSION_ORDINAL")) {
        const std::string name = NameIn(dimensions, row, "DIMENSION_NAME");
        cube_->dimensions.push_back({name,
                                     CaptionOf(dimensions, row, "DIMENSION_CAPTION", name),
                                     NameIn(dimensions, row, "DIMENSION_UNIQUE_NAME"),
                                     {}});
    }
    const auto hierarchies = Discover("MDSCHEMA_HIERARCHIES", CubeRestrictions());
    RequireOrdinaryNumber(hierarchies);
    for (const std::size_t row : RowsBy(hierarchies, "HIERARCHY_ORDINAL")) {
        auto* dimension =
            FindByUniqueName(cube_->dimensions, NameIn(hierarchies, row, "DIMENSION_UNIQUE_NAME"));
        if (!dimension) {
            continue;
        }
        std::string name = hierarchies.Text(row, "HIERARCHY_NAME");
        if (name.empty()) {
            name = dimension->name;
        }
        dimension->hierarchies.push_back({name,
                                          CaptionOf(hierarchies, row, "HIERARCHY_CAPTION", name),
                                          NameIn(hierarchies, row, "HIERARCHY_UNIQUE_NAME"),
                                          {}});
    }
    const auto levels = Discover("MDSCHEMA_LEVELS", CubeRestrictions());
    RequireOrdinaryNumber(levels);
    for (const std::size_t row : RowsBy(levels, "LEVEL_NUMBER")) {
        auto* dimension = FindByUniqueName(cube_->dimensions, NameIn(levels, row, "DIMENSION_UNIQUE_NAME"));
        auto* hierarchy =
            dimension ? FindByUniqueName(dimension->hierarchies, NameIn(levels, row, "HIERARCHY_UNIQUE_NAME"))
                      : nullptr;
        if (!hierarchy) {
            continue;
        }
        const std::string name = NameIn(levels, row, "LEVEL_NAME");
        hierarchy->levels.push_back(
            {name, CaptionOf(levels, row, "LEVEL_CAPTION", name), NameIn(levels, row, "LEVEL_UNIQUE_NAME")});
    }
}

const ServerMembers& ServerSession::MembersOf(const ServerLevel& level) {
    const std::scoped_lock lock(metadata_);
    const auto found = members_.find(level.uniqueName);
    if (found != members_.end()) {
        return found->second;
    }
    auto restrictions = CubeRestrictions();
    restrictions.emplace_back("LEVEL_UNIQUE_NAME", level.uniqueName);
    const auto rows = Discover("MDSCHEMA_MEMBERS", restrictions);
    ServerMembers loaded;
    for (const std::size_t row : RowsBy(rows, "MEMBER_ORDINAL")) {
        const std::string name = rows.Text(row, "MEMBER_NAME");
        loaded.byName[FoldCase(name)].push_back(loaded.members.size());
        const std::string uniqueName = NameIn(rows, row, "MEMBER_UNIQUE_NAME");
        if (!loaded.byUniqueName.emplace(uniqueName, loaded.members.size()).second) {
            throw ServerError(errorServerAnswer,
                              fmt::format("The server lists {} twice.", ShownMessage(uniqueName)));
        }
        loaded.members.push_back({name, CaptionOf(rows, row, "MEMBER_CAPTION", name), uniqueName,
                                  rows.Text(row, "PARENT_UNIQUE_NAME")});
    }
    return members_.emplace(level.uniqueName, std::move(loaded)).first->second;
}

RowsetAnswer ServerSession::Discover(const std::string& requestType, const XmlaPairs& restrictions) {
    XmlaPairs properties{{"Content", "Data"}, {"Format", "Tabular"}};
    if (!restrictions.empty() && restrictions.front().first == catalogRestriction &&
        !restrictions.front().second.empty()) {
        properties.emplace_back("Catalog", restrictions.front().second);
    }
    return Ask<RowsetAnswer>(ComposeDiscover(requestType, restrictions, properties), discoverAction);
}

CellsetAnswer ServerSession::Execute(const std::string& statement) {
    auto answer = Ask<CellsetAnswer>(ComposeExecute(ForServer(statement), {{"Catalog", catalog_},
                                                                           {"Format", "Multidimensional"},
                                                                           {"AxisFormat", "TupleFormat"},
                                                                           {"Content", "Data"}}),
                                     executeAction);
    try {
        answer.RequireCellsOnAxes();
    } catch (const AutomationError&) {
        isLost_ = true; // as after any other improper answer
        throw;
    }
    return answer;
}

RowsetAnswer ServerSession::ExecuteTabular(const std::string& statement) {
    return Ask<RowsetAnswer>(
        ComposeExecute(ForServer(statement),
                       {{"Catalog", catalog_}, {"Format", "Tabular"}, {"Content", "SchemaData"}}),
        executeAction);
}

std::string ServerSession::ForServer(const std::string& statement) {
    // A server may answer an empty statement with nothing, which would look like a listing without rows.
    if (statement.find_first_not_of(" \t\r\n") == std::string::npos) {
        throw ServerError(errorNoStatement, "The statement is empty.");
    }
    return WithMembersOfLowerLevels(WithoutEmptyElements(statement),
                                    [this](const std::string& hierarchy, const std::string& name) {
                                        return FindBelowHierarchy(hierarchy, name);
                                    });
}

std::optional<std::string> ServerSession::FindBelowHierarchy(const std::string& hierarchy,
                                                             const std::string& name) {
    const ServerHierarchy* found = Cube().FindHierarchy(hierarchy);
    if (!found) {
        return std::nullopt;
    }
    const bool isLevel = std::any_of(found->levels.begin(), found->levels.end(),
                                     [&](const auto& level) { return EqualIgnoringCase(level.name, name); });
    if (isLevel) {
        return std::nullopt;
    }
    for (const auto& level : found->levels) {
        const auto& members = MembersOf(level);
        const auto named = members.byName.find(FoldCase(name));
        if (named != members.byName.end()) {
            return members.members[named->second.front()].uniqueName;
        }
    }
    return std::nullopt;
}

} // namespace qel
