#include "engine/build/AmountText.h"
#include "engine/build/CsvReader.h"
#include "engine/build/FieldDate.h"
#include "engine/build/HeaderLine.h"
#include "qel/engine/EngineError.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

// Reads any bytes as a CSV table below the lines that seem to stand above its header, and every field as an
// amount and as a date. The first byte chooses the delimiter and the number format.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace qel::engine;
    if (size == 0) {
        return 0;
    }
    CsvFormat format;
    format.delimiter = "\0,;\t"[data[0] & 3U];
    format.decimal = (data[0] & 4U) != 0 ? ',' : '.';
    format.thousands = (data[0] & 8U) != 0 ? ' ' : '\0';
    format.dates = static_cast<DateFormat>((data[0] >> 4U) & 3U);
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::istringstream first(text), input(text);
    try {
        CsvReader reader(input, "fuzz.csv", format.delimiter, 0, LinesAboveHeader(first, "fuzz.csv"));
        std::uint64_t line = reader.Header().empty() ? 0 : 1;
        while (reader.Next()) {
            if (reader.Number() <= line || reader.Raw().empty()) {
                std::abort(); // the reader must advance
            }
            line = reader.Number();
            for (std::size_t i = 0; reader.Fault().empty() && i < reader.Header().size(); ++i) {
                ParseAmount(reader.Field(i), format, 2);
                const auto day = ParseDate(reader.Field(i), format.dates);
                if (day && ParseDate(FormatDate(*day), DateFormat::Iso) != day) {
                    std::abort();
                }
            }
        }
    } catch (const EngineError&) {
        return 0; // an expected error
    }
    return 0;
}
