#include "calc/SuiteOfUser.h"

#include "calc/ServerQuestion.h"
#include "calc/ServersOfUser.h"
#include "calc/ThreadFunction.h"
#include "platform/settings/files/ConfigFolder.h"
#include "text/Utf8Path.h"

#include <dlfcn.h>

namespace qel::calc {

namespace {

/// The folder of the shared library that holds this code.
std::string ComponentFolder() {
    static const char anywhere = 0;
    Dl_info library = {};
    if (::dladdr(&anywhere, &library) == 0 || library.dli_fname == nullptr) {
        return PathToUtf8(std::filesystem::current_path());
    }
    return PathToUtf8(std::filesystem::path(library.dli_fname).parent_path());
}

} // namespace

SuiteOfUser::SuiteOfUser(const office::Context& context)
    : windows_(context), messages_(windows_), toolkit_(windows_), registry_(SettingsFile()),
      environment_{.registry = registry_,
                   .profiles = profiles_,
                   .database = database_,
                   .messages = messages_,
                   .componentFolder = ComponentFolder(),
                   .settingsFolder = PathToUtf8(ConfigFolder())},
      language_{environment_, tables_},
      servers_({.ask =
                    [this](const ServerAddress& address) {
                        AskAboutServer(windows_, *KnownServersOfUser(), address,
                                       language_.iLang == Language::Hebrew);
                    },
                .make = &ServersOfUser,
                .thread = []() -> ModSetCube::ThreadState& { return FunctionOfThread().state; }},
               toolkit_, language_),
      services_{toolkit_, language_, &servers_} {}

} // namespace qel::calc
