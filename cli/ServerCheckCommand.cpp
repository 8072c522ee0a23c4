#include "cli/ServerCheckCommand.h"

#include "cli/ValueText.h"
#include "cube/CubeConnection.h"
#include "cube/CubeLayout.h"
#include "function/OrmQelFunction.h"
#include "platform/data/ConnectionText.h"
#include "platform/data/xmla/ServerSession.h"
#include "platform/data/xmla/settings/ServerSettings.h"
#include "platform/value/AutomationError.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

#include <chrono>

namespace qel {

namespace {

constexpr const char* description = "Tell what a server has, and whether formulas can read a cube of it";

constexpr const char* footer =
    R"(Without CUBE: reaches the server and lists its catalogs and their cubes. With CUBE, which is a catalog and its
cube of the same name: checks also that it has every dimension, hierarchy and level that the formulas name, and
evaluates one formula. Exit status 1 when something is missing.

Example:
  qel server check http://olap.example:8080/xmla LedgerFNC)";

/// Milliseconds since it was made.
class Stopwatch {
public:
    std::string Text() const {
        const auto passed = std::chrono::steady_clock::now() - start_;
        return fmt::format("{:.1f} ms", std::chrono::duration<double, std::milli>(passed).count());
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

class ServerCheck {
public:
    ServerCheck(std::string address, CommandContext& context)
        : address_(std::move(address)), parsed_(ParseServerAddress(address_)),
          options_(ReadServerOptions(context.servers)), context_(context) {
        context.AllowNamed(address_);
    }

    void Print() {
        ServerSession session(parsed_, options_, "");
        const Stopwatch watch;
        const auto catalogs = session.Catalogs();
        Line("server", fmt::format("{}, answered in {}", session.Url(), watch.Text()));
        Line("product", Product(session));
        for (const auto& catalog : catalogs) {
            ServerSession ofCatalog(parsed_, options_, catalog);
            Line("catalog", fmt::format("{}: {}", catalog, fmt::join(ofCatalog.CubeNames(), ", ")));
        }
        if (catalogs.empty()) {
            Fault("the server has no catalog");
        }
    }

    void PrintCube(const std::string& cubeName) {
        const auto connectionText = ModSetCube::ComposeConnectionText(address_, cubeName);
        const auto own = context_.providers.Connect(connectionText);
        const auto catalog = own.provider.CreateCatalog();
        catalog->SetActiveConnection(own.connection);
        const Stopwatch watch;
        const auto cube = catalog->CubeAt(0);
        const auto faults = ModSetCube::FindLayoutFaults(*cube);
        Line("cube", fmt::format("{}, {} dimensions, read in {}", cube->Name(), cube->DimensionCount(),
                                 watch.Text()));
        for (const auto& fault : faults) {
            Fault(fault);
        }
        if (!faults.empty()) {
            return;
        }
        Line("layout", "has everything that the formulas name");
        PrintFormula(cubeName, *cube);
    }

private:
    void Line(std::string_view label, std::string_view text) {
        fmt::print(context_.output, "{:<10}{}\n", fmt::format("{}:", label), text);
    }

    void Fault(std::string_view text) {
        Line("missing", text);
        context_.failed = true;
    }

    static std::string Product(ServerSession& session) {
        const auto sources = session.Discover("DISCOVER_DATASOURCES", {});
        std::string product = sources.RowCount() == 0 ? "" : sources.Text(0, "ProviderName");
        const auto properties = session.Discover("DISCOVER_PROPERTIES", {});
        for (std::size_t row = 0; row < properties.RowCount(); ++row) {
            const std::string name = properties.Text(row, "PropertyName");
            if (name == "ProviderVersion" || name == "DBMSVersion") {
                product += (product.empty() ? "" : " ") + properties.Text(row, "Value");
            }
        }
        return product.empty() ? "(not told)" : product;
    }

    /// The sum of the first OBS name's first number over the cube's last period, twice: a sheet's later
    /// formulas find the connection open.
    void PrintFormula(const std::string& cubeName, const CubeDef& cube) {
        const auto numbers = cube.DimensionNamed("ActX")->HierarchyAt(0)->LevelAt(2);
        if (numbers->MemberCount() == 0) {
            Fault("the level of OBS numbers has no member");
            return;
        }
        const auto number = numbers->MemberAt(0);
        const std::string name = number->Parent()->Name();
        ModSetCube::ThreadState thread;
        OrmQelFunction object({thread, context_.providers, context_.locale});
        const Stopwatch first;
        const auto key = [](const std::string& text) { return Variant::List({text}); };
        ValueCall call{.cubeFile = address_,
                       .CubeName = cubeName,
                       .ObsName = key(name),
                       .ObsNum = key(number->Name()),
                       .ObsLevel = key("All"),
                       .ObsMember = key("All"),
                       .ActivityList = key("All"),
                       .Measure = "Amount"};
        object.QelFuncDemo(call);
        const std::string firstTime = first.Text();
        const Stopwatch second;
        call.From_Date = call.To_Date = thread.dates.CubeMaxDate;
        const Variant value = object.QelFuncDemo(call).value;
        Line("formula",
             fmt::format("OBS {} {}, {}: {} (the first in {}, the next in {})", name, number->Name(),
                         FormatShortDate(thread.dates.CubeMaxDate, context_.locale), ValueText(value),
                         firstTime, second.Text()));
        context_.failed = context_.failed || value.Is<std::string>();
    }

    std::string address_;
    ServerAddress parsed_;
    ServerOptions options_;
    CommandContext& context_;
};

} // namespace

void AddServerCheckCommand(CLI::App& server, CommandContext& context) {
    auto* command = server.add_subcommand("check", description);
    command->footer(footer);
    struct Arguments {
        std::string address, cube;
    };
    auto arguments = std::make_shared<Arguments>();
    command->add_option("ADDRESS", arguments->address, "The server's address, http://… or https://…")
        ->required()
        ->check([](const std::string& text) {
            return IsServerAddress(text) ? "" : "an address begins with http:// or https://";
        });
    command->add_option("CUBE", arguments->cube, "The cube to check");
    command->callback([arguments, &context] {
        ServerCheck check(arguments->address, context);
        check.Print();
        if (!arguments->cube.empty()) {
            check.PrintCube(arguments->cube);
        }
    });
}

} // namespace qel
