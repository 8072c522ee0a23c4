#include "tests/server/LedgerCall.h"

#include "function/OrmQelFunction.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"

#include <gtest/gtest.h>

namespace qel::test {

Arguments ArgumentsOf(const LedgerCall& call) {
    Arguments arguments;
    arguments.push_back(Text(call.cubeFile));
    arguments.push_back(Text(call.cubeName));
    for (const std::string* key :
         {&call.obsName, &call.obsNumber, &call.obsLevel, &call.obsMember, &call.activity}) {
        arguments.push_back(Texts({*key}));
    }
    for (const std::string& selection : call.selections) {
        arguments.push_back(Text(selection));
    }
    arguments.push_back(Day(call.from));
    arguments.push_back(Day(call.to));
    return arguments;
}

double ValueInProcess(const LedgerCall& call) {
    EmbeddedDataAccess dataAccess;
    ModSetCube::ThreadState thread;
    const Locale locale;
    OrmQelFunction function({thread, dataAccess, locale});
    LedgerCall copy = call;
    auto& s = copy.selections;
    const auto list = [](const std::string& key) { return Variant::List({key}); };
    const Variant value =
        function.QeLF1(copy.cubeFile, copy.cubeName, list(call.obsName), list(call.obsNumber),
                       list(call.obsLevel), list(call.obsMember), list(call.activity), s[0], s[1], s[2], s[3],
                       s[4], s[5], s[6], s[7], s[8], {call.from}, {call.to});
    EXPECT_TRUE(value.Is<double>()) << value.TypeName();
    return value.Is<double>() ? value.As<double>() : 0;
}

double ValueThroughCom(IDispatch* object, Arguments& arguments) {
    const CallResult result = Invoke(object, L"QeLF1", arguments);
    EXPECT_EQ(result.status, S_OK) << result.description;
    const VARIANT& value = result.value.Get();
    if (V_VT(&value) == VT_I2) {
        return V_I2(&value);
    }
    EXPECT_EQ(V_VT(&value), VT_R8);
    return V_VT(&value) == VT_R8 ? V_R8(&value) : 0;
}

} // namespace qel::test
