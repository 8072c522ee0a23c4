#pragma once

#include "platform/value/Variant.h"
#include "platform/windows/ComPointer.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qel::test {

/// What clients did with an object and the objects behind it, as a macro would write it.
struct ObjectRecord {
    std::vector<std::string> lines;        ///< calls of methods, and properties that were set
    std::map<std::string, Variant> values; ///< what properties hold, by path: "ActiveSheet.Name"
    std::function<void(const std::string& line)> afterLine = [](const std::string&) {};
};

/// An object that has every member. A property without a value is an object, whose path is the member's; the
/// arguments belong to it: "Cells(1,2)". Calls in other locales than a macro's are refused.
windows::ComPointer<IDispatch> RecordedObject(const std::shared_ptr<ObjectRecord>& record);

} // namespace qel::test
