#pragma once

#include "cube/KnownCells.h"
#include "cube/ObsMemory.h"
#include "platform/data/DataAccess.h"

#include <memory>
#include <string>
#include <vector>

namespace qel::ModSetCube {

/// The periods of the open cube: the members of the finest level of [Date], in member order.
struct DateTable {
    std::vector<AutomationDate> CubeDates;  ///< ascending; the first day of each period
    std::vector<std::string> CubeDateNames; ///< their unique names
    AutomationDate CubeMinDate, CubeMaxDate;
    std::string earlier{}; ///< the first member whose date is before the one before it; empty if none is
};

/// A cube in its file, as a call named it.
struct OpenedCube {
    std::string cubeFile, cubeName;

    bool operator==(const OpenedCube&) const = default;
};

/// What every object of one thread shares. A door keeps one per thread (the component is apartment-threaded).
struct ThreadState {
    std::shared_ptr<Connection> CubeConnection; ///< none after an error or when an object of the thread ended
    DataAccess* provider = nullptr;             ///< which made CubeConnection
    OpenedCube connected;                       ///< what CubeConnection was last opened on, by any object
    DateTable dates;                            ///< of the cube that the last version check saw
    bool datesAreCurrent =
        false;             ///< `dates` were loaded since CubeConnection was last opened or got new data
    ObsMemory obsMembers;  ///< of the cube that CubeConnection is open on
    KnownCells knownCells; ///< likewise
};

} // namespace qel::ModSetCube
