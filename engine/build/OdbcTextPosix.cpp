#include "engine/build/OdbcText.h"

namespace qel::engine {

OdbcString ToOdbc(std::string_view text) { return {text.begin(), text.end()}; }

std::string FromOdbc(OdbcView text) { return {text.begin(), text.end()}; }

Utf8Locale::Utf8Locale()
    : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)), former_(::uselocale(locale_)) {}

Utf8Locale::~Utf8Locale() {
    ::uselocale(former_);
    if (locale_ != nullptr) {
        ::freelocale(locale_);
    }
}

} // namespace qel::engine
