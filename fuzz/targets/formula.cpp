#include "function/formula/BindFormula.h"
#include "function/formula/FormulaError.h"
#include "function/formula/ParseFormula.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

// Any text is either parsed as a call or rejected with a position inside the text or at its end.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const qel::Locale locale;
    try {
        qel::BindFormula(qel::ParseFormula(text), locale);
    } catch (const qel::FormulaError& error) {
        if (error.Position() < 1 || error.Position() > size + 1) {
            std::abort();
        }
    }
    return 0;
}
