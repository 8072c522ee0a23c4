#pragma once

#include "function/OrmQelFunction.h"

#include <functional>
#include <string>

namespace qel::calc {

/// The arguments of a value formula as the class takes them.
struct ValueArguments {
    std::string cubeFile, cubeName;
    Variant obsName, obsNumber, obsLevel, obsMember, activities;
    std::string summaryGroup, seifLevel, accounts, measure, moneySet, plbs, rh, firma, openingBalance;
    AutomationDate fromDate, toDate;
};

/// The same of a name formula.
struct NameArguments {
    std::string cubeFile, cubeName, dimType, dimMember;
};

/// What the formula gives. Raises AutomationError.
Variant Evaluate(OrmQelFunction& function, ValueArguments arguments);
Variant Evaluate(OrmQelFunction& function, NameArguments arguments);

/// A formula over a server's cube, to be evaluated when the cell waits no more.
struct ServerCall {
    std::string server; ///< its address
    std::string cube;   ///< the name, as the formula has it
    std::string key;    ///< equal for calls that ask for the same
    Locale locale;      ///< of the document that asked first
    bool isValue;       ///< a value formula, whose cell can be asked for together with others
    std::function<Variant(OrmQelFunction& function)> evaluate; ///< may be called several times
};

/// True when the argument names a server's cube.
bool AsksServer(const std::string& cubeFile);

ServerCall CallOf(const ValueArguments& arguments, const Locale& locale);
ServerCall CallOf(const NameArguments& arguments, const Locale& locale);

} // namespace qel::calc
