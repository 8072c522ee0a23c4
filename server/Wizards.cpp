#include "server/Wizards.h"

#include "cube/CubeConnection.h"
#include "server/ServerPermission.h"
#include "server/SuiteStore.h"
#include "server/ThreadContext.h"

namespace qel::server {

namespace {

/// Takes the thread's connection away, at the end, when this provider made it.
class WithoutConnectionOf {
public:
    WithoutConnectionOf(DataAccess& provider, ModSetCube::ThreadState& thread)
        : provider_(provider), thread_(thread) {}
    ~WithoutConnectionOf() {
        if (thread_.provider == &provider_) {
            ModSetCube::DropConnection(thread_);
        }
    }
    WithoutConnectionOf(const WithoutConnectionOf&) = delete;
    WithoutConnectionOf& operator=(const WithoutConnectionOf&) = delete;

private:
    DataAccess& provider_;
    ModSetCube::ThreadState& thread_;
};

} // namespace

Wizards::Wizards(ModSetCube::ThreadState& thread)
    : thread_(thread), servers_({.ask = &AskAboutServer,
                                 .make = &ServersOfDialogs,
                                 .thread = [&thread]() -> ModSetCube::ThreadState& { return thread; }},
                                toolkit_, SuiteLanguage()),
      services_{toolkit_, SuiteLanguage(), &servers_, ProvidersOfMachine(servers_.Access())} {}

void Wizards::Show(const std::function<void()>& dialog) {
    const WithoutConnectionOf servers(servers_.Access(), thread_);
    dialog();
}

} // namespace qel::server
