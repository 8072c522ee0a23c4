#pragma once

#include "calc/CallingDocument.h"
#include "function/OrmQelFunction.h"

namespace qel::calc {

/// What the cells of one thread share, as they do in Excel: one object of the class, and its connection.
struct ThreadFunction {
    ThreadFunction();

    Locale locale; ///< of the calling document; set before each call
    CubePaths paths;
    ModSetCube::ThreadState state;
    OrmQelFunction function;
};

/// The calling thread's own.
ThreadFunction& FunctionOfThread();

/// Every cube that this door opens.
DataAccess& Cubes();

} // namespace qel::calc
