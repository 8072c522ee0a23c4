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

ValueCall ValueCallOf(const LedgerCall& call) {
    const auto list = [](const std::string& key) { return Variant::List({key}); };
    ValueCall value{.cubeFile = call.cubeFile,
                    .CubeName = call.cubeName,
                    .ObsName = list(call.obsName),
                    .ObsNum = list(call.obsNumber),
                    .ObsLevel = list(call.obsLevel),
                    .ObsMember = list(call.obsMember),
                    .ActivityList = list(call.activity),
                    .From_Date = {call.from},
                    .To_Date = {call.to}};
    for (std::size_t i = 0; i < call.selections.size(); ++i) {
        value.*valueCallTexts[i + 2] = call.selections[i]; // after the cube's file and name
    }
    return value;
}

double ValueInProcess(const LedgerCall& call) {
    EmbeddedDataAccess dataAccess;
    ModSetCube::ThreadState thread;
    const Locale locale;
    OrmQelFunction function({thread, dataAccess, locale});
    const Variant value = function.QeLF1(ValueCallOf(call)).value;
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
