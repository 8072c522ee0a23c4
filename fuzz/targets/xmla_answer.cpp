#include "platform/data/xmla/CellsetAnswer.h"
#include "platform/data/xmla/RowsetAnswer.h"
#include "platform/data/xmla/SoapAnswer.h"
#include "platform/value/AutomationError.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

// Reads any bytes as a server's answer, as a cellset and as a rowset, in two pieces, then accesses everything
// that was read.

namespace {

using namespace qel;

template <class Answer, class Use>
void Read(std::string_view bytes, const Use& use) {
    Answer answer;
    SoapAnswer soap(answer);
    try {
        XmlStream xml(soap, {});
        xml.Read(bytes.substr(0, bytes.size() / 2));
        xml.Read(bytes.substr(bytes.size() / 2));
        xml.Finish();
        if (!soap.IsComplete()) {
            std::abort();
        }
        use(answer);
    } catch (const AutomationError&) {
        return; // an expected error
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    Read<CellsetAnswer>(bytes, [](const CellsetAnswer& answer) {
        for (std::uint64_t ordinal = 0; ordinal < answer.Axes().size() + 1; ++ordinal) {
            static_cast<void>(answer.Cell(ordinal));
        }
    });
    Read<RowsetAnswer>(bytes, [](const RowsetAnswer& answer) {
        for (std::size_t row = 0; row < answer.RowCount(); ++row) {
            for (std::size_t field = 0; field < answer.Fields().size(); ++field) {
                static_cast<void>(answer.Value(row, field));
            }
        }
    });
    return 0;
}
