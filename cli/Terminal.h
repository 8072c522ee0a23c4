#pragma once

namespace qel {

/// Whether standard output goes to a terminal.
bool StandardOutputIsTerminal();

/// The columns of the terminal that standard error goes to; 0 when it goes elsewhere or to a terminal that
/// cannot move its cursor.
int StandardErrorColumns();

} // namespace qel
