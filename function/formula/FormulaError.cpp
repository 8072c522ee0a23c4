#include "function/formula/FormulaError.h"

#include <fmt/format.h>

namespace qel {

FormulaError::FormulaError(std::size_t position, const std::string& message)
    : std::runtime_error(fmt::format("{} (at character {} of the formula)", message, position)),
      position_(position) {}

} // namespace qel
