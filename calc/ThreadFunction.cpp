#include "calc/ThreadFunction.h"

#include "platform/local/LocalDataAccess.h"

namespace qel::calc {

namespace {

DataAccess& Cubes() {
    static LocalDataAccess cubes;
    return cubes;
}

} // namespace

ThreadFunction::ThreadFunction() : function({state_, Cubes(), locale}) {}

ThreadFunction& FunctionOfThread() {
    thread_local ThreadFunction mine;
    return mine;
}

} // namespace qel::calc
