#include "engine/build/Definition.h"

#include "qel/engine/EngineError.h"

#include <cstdint>
#include <string_view>

// Reads any bytes as a cube definition.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        qel::engine::ParseDefinition({reinterpret_cast<const char*>(data), size}, "fuzz.json", "/data");
    } catch (const qel::engine::EngineError&) {
        return 0; // an expected error
    }
    return 0;
}
