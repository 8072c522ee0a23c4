#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/Rowset.h"
#include "tests/helpers/automation/DispatchDouble.h"

namespace qel::test {

/// ADODB.Recordset over the port's, except Open and Close.
void DefineRows(DispatchDouble& object, const std::shared_ptr<Recordset>& rows);

/// An open recordset of these rows.
std::shared_ptr<Recordset> RecordsetOf(Rowset rows);

} // namespace qel::test
