#include "cli/ServerCheckCommand.h"

#include "cli/CubeCheck.h"
#include "platform/data/ConnectionText.h"
#include "platform/data/xmla/ServerSession.h"
#include "platform/data/xmla/settings/ServerSettings.h"
#include "platform/value/AutomationError.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <span>

namespace qel {

namespace {

constexpr std::size_t mostCatalogs = 100;

constexpr const char* serverCheckDescription =
    "Show what a server offers, and whether formulas can read one of its cubes";

constexpr const char* serverCheckFooter =
    R"(Without CUBE: reaches the server and lists its catalogs and their cubes, which takes one request per catalog; of more
than 100 catalogs, only the first 100 are listed. With CUBE, which is a catalog and its cube of the same name: checks also
that it has every dimension, hierarchy and level that the formulas name, and evaluates one formula. Exit status 1 when
something is missing.

Example:
  qel server check http://olap.example:8080/xmla LedgerFNC)";

class ServerCheck {
public:
    ServerCheck(std::string address, CommandContext& context)
        : address_(std::move(address)), parsed_(ParseServerAddress(address_)),
          options_(ReadServerOptions(context.servers)), check_(address_, context) {
        context.AllowNamed(address_);
    }

    void Print() {
        ServerSession session(parsed_, options_, "");
        const Stopwatch watch;
        const auto catalogs = session.Catalogs();
        check_.Line("server", fmt::format("{}, answered in {}", session.Url(), watch.Text()));
        check_.Line("product", Product(session));
        const std::size_t listed = std::min(catalogs.size(), mostCatalogs);
        for (const auto& catalog : std::span(catalogs).first(listed)) {
            check_.Line("catalog", fmt::format("{}: {}", catalog, fmt::join(session.CubesOf(catalog), ", ")));
        }
        if (listed < catalogs.size()) {
            check_.Line("catalogs",
                        fmt::format("{} in all, the first {} listed; name another as CUBE to check it",
                                    catalogs.size(), listed));
        }
        if (catalogs.empty()) {
            check_.Fault("the server has no catalog");
        }
    }

    void PrintCube(const std::string& cubeName) { check_.Print(cubeName, "Amount"); }

private:
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

    std::string address_;
    ServerAddress parsed_;
    ServerOptions options_;
    CubeCheck check_;
};

} // namespace

void AddServerCheckCommand(CLI::App& server, CommandContext& context) {
    auto* command = server.add_subcommand("check", serverCheckDescription);
    command->footer(serverCheckFooter);
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
