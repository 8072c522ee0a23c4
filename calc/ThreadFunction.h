#pragma once

#include "function/OrmQelFunction.h"

namespace qel::calc {

/// What the cells of one thread share, as they do in Excel: one object of the class, and its connection.
class ThreadFunction {
public:
    ThreadFunction();

    Locale locale; ///< of the calling document; set before each call
private:
    ModSetCube::ThreadState state_;

public:
    OrmQelFunction function;
};

/// The calling thread's own.
ThreadFunction& FunctionOfThread();

} // namespace qel::calc
