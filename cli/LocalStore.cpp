#include "cli/LocalStore.h"

#include "text/Text.h"

namespace qel {

MessageBoxAnswer StreamMessages::Show(std::int32_t /*style*/, const std::string& title,
                                      const std::string& text) {
    hasShown_ = true;
    if (!title.empty()) {
        stream_ << title << ":\n";
    }
    stream_ << ReplaceAll(text, "\r\n", "\n") << '\n';
    return MessageBoxAnswer::Ok;
}

LocalStore::LocalStore(std::ostream& messageStream)
    : messages(messageStream), system(StoreOfSystem()),
      environment{system->Values(), system->Profiles(), system->Database(), messages,
                  system->ProgramFolder()} {}

} // namespace qel
