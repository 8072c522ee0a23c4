#pragma once

namespace qel::server {

/// Whether a person can answer a question of the calling thread: the window in the foreground is its own. A
/// thread that calculates in the background, a hidden or covered Excel and a service have none.
[[nodiscard]] bool CanAskPerson();

} // namespace qel::server
