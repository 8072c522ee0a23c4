#include "calc/ThreadFunction.h"

#include "platform/data/embedded/EmbeddedDataAccess.h"

namespace qel::calc {

ThreadFunction::ThreadFunction() : function({state, Cubes(), locale}) {}

ThreadFunction& FunctionOfThread() {
    thread_local ThreadFunction mine;
    return mine;
}

DataAccess& Cubes() {
    static EmbeddedDataAccess cubes;
    return cubes;
}

} // namespace qel::calc
