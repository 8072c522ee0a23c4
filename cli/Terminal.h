#pragma once

namespace qel {

/// True when standard error goes to a person's terminal.
bool StandardErrorIsTerminal();

} // namespace qel
