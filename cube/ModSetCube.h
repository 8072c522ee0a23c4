#pragma once

#include "platform/DataAccess.h"

#include <memory>
#include <string>
#include <vector>

// The cube connection, the Date member table and the text of every statement. Names are those that the
// suite's other components and its documentation use.

namespace qel::ModSetCube {

/// A zero-based list of keys made from one worksheet argument; statements use element 0 alone.
using KeyList = std::vector<Variant>;

/// What every object of one thread shares. A door keeps one a thread (the component is apartment-threaded).
struct ThreadState {
    std::shared_ptr<Connection> CubeConnection; ///< none after an error or when an object of the thread ended
    std::vector<AutomationDate> CubeDates;      ///< ascending, the finest period level of [Date]
    std::vector<std::string> CubeDateNames;     ///< their unique names
    AutomationDate CubeMinDate, CubeMaxDate;
};

} // namespace qel::ModSetCube
