#include "examples/ledger/LedgerFiles.h"

#include "examples/ledger/LedgerDefinition.h"

#include <fmt/format.h>

#include <stdexcept>
#include <string>

namespace qel::ledger {
namespace {

std::ofstream Create(const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file) {
        throw std::runtime_error(fmt::format("{} cannot be created.", path.string()));
    }
    return file;
}

void Finish(std::ofstream& file, const std::filesystem::path& path) {
    file.close();
    if (!file) {
        throw std::runtime_error(fmt::format("{} could not be written in full.", path.string()));
    }
}

std::string Quoted(std::string_view field) {
    if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
        return std::string(field);
    }
    std::string quoted = "\"";
    for (const char character : field) {
        quoted += character;
        if (character == '"') {
            quoted += '"';
        }
    }
    return quoted + '"';
}

template <class Field>
void WriteRow(std::ofstream& file, const std::vector<Field>& fields) {
    std::string row;
    for (const Field& field : fields) {
        row += row.empty() ? "" : ",";
        row += Quoted(field);
    }
    file << row << '\n';
}

std::string Scaled(std::int64_t value, int decimals, std::int64_t scale) {
    const std::int64_t magnitude = value < 0 ? -value : value;
    return fmt::format("{}{}.{:0{}}", value < 0 ? "-" : "", magnitude / scale, magnitude % scale, decimals);
}

/// Whole quantities have no decimals; 0 is empty.
std::string QuantityText(std::int64_t thousandths) {
    if (thousandths == 0) {
        return {};
    }
    return thousandths % 1000 == 0 ? std::to_string(thousandths / 1000) : Scaled(thousandths, 3, 1000);
}

} // namespace

LedgerCsv::LedgerCsv(const std::filesystem::path& file) : path_(file), file_(Create(file)) {
    file_ << "entry,date,firm,account,activity,cost_centre,obs,obs_number,plbs,rh,opening_balance,money_set,"
             "quantity,amount\n";
}

void LedgerCsv::Write(const LedgerLine& line) {
    file_ << fmt::format("{},{:04}-{:02}-{:02},{},{},{},{},{},{},{},{},{},{},{},{}\n", line.entry,
                         static_cast<int>(line.date.year()), static_cast<unsigned>(line.date.month()),
                         static_cast<unsigned>(line.date.day()), line.firm, line.account,
                         line.analysis.activity, line.analysis.costCentre, line.analysis.obs,
                         line.analysis.obsNumber, line.plbs, line.rh, line.openingBalance, line.moneySet,
                         QuantityText(line.thousandths), Scaled(line.cents, 2, 100));
}

void LedgerCsv::Close() { Finish(file_, path_); }

void WriteTable(const std::filesystem::path& folder, const DimensionTable& table) {
    const std::filesystem::path path = folder / table.file;
    std::ofstream file = Create(path);
    WriteRow(file, table.columns);
    for (const std::vector<std::string>& row : table.rows) {
        WriteRow(file, row);
    }
    Finish(file, path);
}

void WriteDefinition(const std::filesystem::path& folder, std::size_t obsLevels) {
    const std::filesystem::path path = folder / "ledger.json";
    std::ofstream file = Create(path);
    file << LedgerDefinition(obsLevels);
    Finish(file, path);
}

} // namespace qel::ledger
