#include "platform/data/embedded/EmbeddedConnection.h"

#include "platform/data/ObjectErrors.h"
#include "platform/data/embedded/CellVariant.h"
#include "platform/data/embedded/EmbeddedRecordset.h"
#include "platform/data/embedded/OpenCubeFiles.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "qel/engine/CellQuery.h"
#include "text/CaseFold.h"
#include "text/NameList.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <utility>

namespace qel {

namespace {

/// The embedded engine stands in for "MSOLAP" and its versions ("MSOLAP.8").
void RequireProvider(const std::string& provider) {
    constexpr std::string_view expected = "MSOLAP";
    const auto name = std::string_view(provider).substr(0, provider.find('.'));
    if (!provider.empty() && !EqualIgnoringCase(name, expected)) {
        throw ProviderError(
            errorNotSupported,
            fmt::format("The connection text names the provider '{}'; cubes are opened through "
                        "'{}'.",
                        provider, expected));
    }
}

std::shared_ptr<const engine::Cube> OnlyCube(const engine::CubeFile& file, const std::string& path) {
    const auto& cubes = file.Cubes();
    if (cubes.size() == 1) {
        return file.FindCube(cubes.front().Name());
    }
    std::vector<std::string> names(cubes.size());
    std::transform(cubes.begin(), cubes.end(), names.begin(), [](const auto& cube) { return cube.Name(); });
    throw ProviderError(engine::ErrorKind::UnknownCube,
                        fmt::format("No cube is named, and the cube file '{}' holds {}: {}.", path,
                                    cubes.size(), NameList(names, "'")));
}

std::shared_ptr<const engine::CubeFile> OpenFile(OpenCubeFiles& files, const ConnectionText& text) {
    RequireProvider(text.provider);
    return files.Open(text.dataSource);
}

std::shared_ptr<const engine::Cube> ChooseCube(const engine::CubeFile& file, const ConnectionText& text) {
    return TranslatingErrors([&] {
        if (!text.initialCatalog && !file.Cubes().empty()) {
            return file.FindCube(file.Cubes().front().Name());
        }
        const std::string name = text.initialCatalog.value_or("");
        return name.empty() ? OnlyCube(file, text.dataSource) : file.FindCube(name);
    });
}

Rowset CatalogRows(const engine::CubeFile& file) {
    Rowset table{.fields = {"CATALOG_NAME"}, .rows = {}};
    for (const auto& cube : file.Cubes()) {
        table.rows.push_back({cube.Name()});
    }
    return table;
}

/// Keeps its cube, and so the file, open.
class EmbeddedCell final : public PreparedCell {
public:
    EmbeddedCell(std::shared_ptr<const engine::Cube> cube, std::unique_ptr<const engine::PlannedCell> cell)
        : cube_(std::move(cube)), cell_(std::move(cell)) {}

    Variant Value() const override {
        return TranslatingErrors([this] { return CellVariant(cell_->Value()); });
    }
    void Prefetch() const override { cell_->Prefetch(); }
    std::size_t Bytes() const override { return sizeof *this + cell_->Bytes(); }

private:
    std::shared_ptr<const engine::Cube> cube_;
    std::unique_ptr<const engine::PlannedCell> cell_;
};

std::unique_ptr<const engine::PlannedCell> PlanCell(const engine::Cube& cube, const CellQuery& query) {
    std::vector<engine::MemberPath> members;
    members.reserve(query.members.size());
    for (const QueryMember& member : query.members) {
        members.push_back({member.path, member.names, member.nameCount});
    }
    engine::CellQuery cell{query.cube,       query.measure,     members,      query.periods,
                           query.lastPeriod, query.periodCount, query.summed, {}};
    if (query.summedMembers != nullptr) {
        cell.summedMembers = *query.summedMembers;
    }
    return engine::PlanCell(cube, cell);
}

} // namespace

std::shared_ptr<const engine::Cube> OpenCube(OpenCubeFiles& files, const std::string& connectionString) {
    const auto text = ParseConnectionText(connectionString);
    return ChooseCube(*OpenFile(files, text), text);
}

void EmbeddedConnection::Open(const std::string& connectionString, const std::string& /*user*/,
                              const std::string& /*password*/, int /*options*/) {
    if (cube_) {
        throw ObjectOpenError(embeddedProvider);
    }
    text_ = ParseConnectionText(connectionString);
    Take(OpenFile(*files_, text_));
    connectionString_ = connectionString;
    lookedAt_ = usedAt_ = Clock::now();
    hasNewData_ = false;
}

void EmbeddedConnection::Take(std::shared_ptr<const engine::CubeFile> file) {
    cube_ = ChooseCube(*file, text_);
    plans_ = files_->PlansOf(file);
    file_ = std::move(file);
}

bool EmbeddedConnection::Refresh() {
    constexpr auto rest = std::chrono::milliseconds(100);
    const auto now = Clock::now();
    const bool isDue = now - usedAt_ > rest || now - lookedAt_ >= text_.synchPeriod;
    usedAt_ = now;
    if (isDue && cube_ && IdentifyFile(PathFromUtf8(text_.dataSource))) {
        lookedAt_ = now;
        TakeNewFile();
    }
    return std::exchange(hasNewData_, false);
}

std::unique_ptr<const PreparedCell> EmbeddedConnection::Prepare(const CellQuery& query) {
    try {
        auto cell = cube_ ? PlanCell(*cube_, query) : nullptr;
        return cell ? std::make_unique<const EmbeddedCell>(cube_, std::move(cell)) : nullptr;
    } catch (const engine::EngineError&) { // the statement tells
        return nullptr;
    }
}

bool EmbeddedConnection::TakeNewFile() {
    auto file = OpenFile(*files_, text_);
    if (file == file_) {
        return false;
    }
    Take(std::move(file));
    hasNewData_ = true;
    return true;
}

void EmbeddedConnection::Close() {
    if (!cube_) {
        throw ObjectClosedError(embeddedProvider);
    }
    cube_ = nullptr;
    plans_ = nullptr;
    file_ = nullptr;
}

std::unique_ptr<Recordset> EmbeddedConnection::OpenSchema(int schema) {
    if (!file_) {
        throw ObjectClosedError(embeddedProvider);
    }
    if (schema != schemaCatalogs) {
        return Connection::OpenSchema(schema);
    }
    return MakeEmbeddedRecordset(CatalogRows(*file_));
}

std::shared_ptr<const engine::Cube>
EmbeddedConnection::CubeOf(const std::shared_ptr<Connection>& connection) {
    return OpenOne(connection).cube_;
}

engine::Cellset EmbeddedConnection::Run(const std::shared_ptr<Connection>& connection,
                                        const std::string& statement) {
    EmbeddedConnection& local = OpenOne(connection);
    return TranslatingErrors([&] {
        try {
            return local.plans_->Run(*local.cube_, statement);
        } catch (const engine::EngineError& error) {
            if (error.Kind() != engine::ErrorKind::DamagedFile || !local.TakeNewFile()) {
                throw;
            }
        }
        return local.plans_->Run(*local.cube_, statement);
    });
}

EmbeddedConnection& EmbeddedConnection::OpenOne(const std::shared_ptr<Connection>& connection) {
    auto* local = dynamic_cast<EmbeddedConnection*>(connection.get());
    if (!local || !local->cube_) {
        throw InvalidConnectionError(embeddedProvider);
    }
    return *local;
}

} // namespace qel
