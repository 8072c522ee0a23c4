#pragma once

#include "cube/ValueCall.h"
#include "tests/helpers/automation/AutomationClient.h"

#include <string>
#include <vector>

namespace qel::test {

/// A value formula over the example ledger; by default the profit and loss of 2024.
struct LedgerCall {
    std::string cubeFile = QEL_TEST_CUBE, cubeName = "LedgerFNC";
    std::string obsName = "OBS", obsNumber = "1", obsLevel = "All", obsMember = "All", activity = "All";
    std::vector<std::string> selections = {"All", "", "All", "Amount", "All", "P", "All", "All", "All"};
    double from = 45292, to = 45657; // 1 January and 31 December 2024
};

/// The indexes of the arguments that tests replace.
enum LedgerArgument {
    cubeFileAt = 0,
    obsNameAt = 2,
    obsNumberAt = 3,
    obsMemberAt = 5,
    activityAt = 6,
    measureAt = 10,
    moneySetAt = 11,
    rhAt = 13,
    fromAt = 16,
    toAt = 17
};

/// The call's eighteen arguments as a spreadsheet sends them.
Arguments ArgumentsOf(const LedgerCall& call);

/// The same as the component takes them.
ValueCall ValueCallOf(const LedgerCall& call);

/// The same call made in process, without COM. Not 0 for a call that tells anything.
double ValueInProcess(const LedgerCall& call);

/// The number that QeLF1 returns. Fails the test when the result is not a number.
double ValueThroughCom(IDispatch* object, Arguments& arguments);

} // namespace qel::test
