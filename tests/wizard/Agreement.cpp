#include "tests/wizard/Agreement.h"

#include "function/formula/ParseFormula.h"
#include "platform/value/Conversion.h"
#include "text/Text.h"
#include "wizard/FormulaArgs.h"
#include "wizard/FunctionFormDesign.h"

#include <gtest/gtest.h>

namespace qel::test {

using namespace FunctionForm;

namespace {

Keys KeysIn(const Variant& argument) {
    if (!argument.IsArray()) {
        return {argument.As<std::string>()};
    }
    Keys keys;
    for (const Variant& key : argument.As<std::shared_ptr<const VariantArray>>()->elements) {
        keys.push_back(key.As<std::string>());
    }
    return keys;
}

bool IsSameDay(const std::string& a, const std::string& b) {
    return ParseDate(a, Locale()) == ParseDate(b, Locale());
}

/// "41" is shown as "41 - Sales"; a level has a name of its own.
bool Shows(const std::string& shown, const std::string& key) {
    return shown == key || shown.starts_with(key + " - ") ||
           (shown == "Cost centres" && key == "Cost_Centers");
}

} // namespace

std::vector<Keys> ReadOff(const FormReader& form) {
    const auto text = [&](const char* control) { return Keys{form.text(control)}; };
    const auto row = [&](const char* box, const char* list) {
        return form.isTicked(box) ? text(list) : Keys{"All"};
    };
    const std::string kind = form.text(ComLevel), group = form.text(ComAccX);
    Keys members = form.items(ListObs);
    if (members.empty()) {
        members = {kind == "All" ? "" : form.text(ComOBSData)};
    }
    return {text(txtCubeFile),
            text(cboDatabaseList),
            text(ComOBSNum),
            text(ComObsX),
            {kind == "OBS levels" ? form.text(ComLevelObs) : kind},
            members,
            row(ChekAct, ComActMember),
            {group},
            {group == "All" ? "All" : form.text(ComMember)},
            row(CheckAcc, ListAccount),
            text(ChcMeasure),
            text(ComMoneySet),
            text(ComPlbs),
            text(ComRh),
            text(ComFirma),
            text(ComOB),
            text(TxtDateFrom),
            text(TxtDateTo)};
}

void ExpectArguments(const std::string& formula, const std::vector<Keys>& shown) {
    const auto arguments = ParseFormula(formula).arguments;
    ASSERT_EQ(arguments.size(), shown.size()) << formula;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        Keys keys = KeysIn(arguments[i].value.value());
        if (keys.size() == shown[i].size() + 1 && keys.back().empty()) {
            keys.pop_back(); // only keeps the quotes of the key before it
        }
        ASSERT_EQ(keys.size(), shown[i].size()) << "argument " << i << " of " << formula;
        for (std::size_t j = 0; j < keys.size(); ++j) {
            const std::string key = ReplaceAll(
                i == FormulaArg::ObsMember ? ReplaceAll(keys[j], "\xC2\xA0", "\"") : keys[j], "]]", "]");
            const bool isDate = i >= FormulaArg::FromDate;
            EXPECT_TRUE(isDate ? IsSameDay(shown[i][j], key) : Shows(shown[i][j], key))
                << "argument " << i << " is " << key << ", the dialog shows " << shown[i][j] << ": "
                << formula;
        }
    }
}

} // namespace qel::test
