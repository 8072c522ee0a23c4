#pragma once

// The cube connection, the Date member table and the text of every statement. Names are those that the
// suite's other components and its documentation use.

#include "cube/CubeConnection.h"
#include "cube/CubeDates.h"
#include "cube/CubeValue.h"
#include "cube/MemberListing.h"
#include "cube/MemberName.h"
#include "cube/MemberStatements.h"
#include "cube/ObsSel.h"
#include "cube/PeriodSelection.h"
#include "cube/ThreadState.h"
#include "cube/ValueStatement.h"
