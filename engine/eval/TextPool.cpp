#include "engine/eval/TextPool.h"

#include "qel/engine/EngineError.h"

#include <fmt/format.h>

namespace qel::engine {

namespace {

constexpr std::size_t poolLimit = 256U << 20U;

} // namespace

void CheckTextLength(std::size_t bytes) {
    if (bytes > textLimit) {
        throw EngineError(ErrorKind::TooLarge, fmt::format("a text has more than {} bytes", textLimit));
    }
}

const std::string& TextPool::Keep(std::string text) {
    CheckTextLength(text.size());
    const auto [kept, isNew] = texts_.insert(std::move(text));
    bytes_ += isNew ? kept->size() + sizeof(std::string) : 0;
    if (bytes_ > poolLimit) {
        throw EngineError(ErrorKind::TooLarge,
                          fmt::format("the texts of the statement have more than {} bytes", poolLimit));
    }
    return *kept;
}

} // namespace qel::engine
