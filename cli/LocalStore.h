#pragma once

#include "cli/SystemStore.h"
#include "lang/ModLangFrm.h"
#include "platform/tables/xml/XmlTableReader.h"
#include "store/StoreEnvironment.h"

#include <memory>
#include <ostream>

namespace qel {

/// Message boxes as lines on a stream; every one is answered with OK.
class StreamMessages : public MessageDisplay {
public:
    explicit StreamMessages(std::ostream& stream) : stream_(stream) {}

    MessageBoxAnswer Show(std::int32_t style, const std::string& title, const std::string& text) override;
    bool HasShown() const { return hasShown_; }

private:
    std::ostream& stream_;
    bool hasShown_ = false;
};

/// The suite's settings and texts as this program has them.
class LocalStore {
public:
    /// Raises AutomationError when the place of the settings is not known.
    explicit LocalStore(std::ostream& messageStream);

    StreamMessages messages;
    const std::unique_ptr<SystemStore> system;
    XmlTableReader tables;
    StoreEnvironment environment; ///< the component's folder is the program's own
};

} // namespace qel
