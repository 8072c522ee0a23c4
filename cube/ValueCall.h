#pragma once

#include "platform/value/Variant.h"

#include <array>
#include <string>

namespace qel {

/// The arguments of a value formula by the interface's names, as the worksheet gave them. A list that was
/// omitted is the spreadsheet's missing value, a text that was omitted is empty, a date the zero date. Made
/// once at each door.
struct ValueCall {
    std::string cubeFile = {}, CubeName = {};
    Variant ObsName = {}, ObsNum = {}, ObsLevel = {}, ObsMember = {}, ActivityList = {};
    std::string Summary_Group = {}, Seif_level = {}, Accounts = {}, Measure = {}, MoneySet = {}, Plbs = {},
                RH = {}, Firma = {}, Opening_Balance = {};
    AutomationDate From_Date = {}, To_Date = {};
};

/// The texts and the lists of a value call, in the interface's order.
inline constexpr std::array<std::string ValueCall::*, 11> valueCallTexts = {
    &ValueCall::cubeFile, &ValueCall::CubeName, &ValueCall::Summary_Group,  &ValueCall::Seif_level,
    &ValueCall::Accounts, &ValueCall::Measure,  &ValueCall::MoneySet,       &ValueCall::Plbs,
    &ValueCall::RH,       &ValueCall::Firma,    &ValueCall::Opening_Balance};
inline constexpr std::array<Variant ValueCall::*, 5> valueCallLists = {
    &ValueCall::ObsName, &ValueCall::ObsNum, &ValueCall::ObsLevel, &ValueCall::ObsMember,
    &ValueCall::ActivityList};

/// The arguments of a name formula.
struct NameCall {
    std::string cubeFile = {}, CubeName = {}, DimType = {}, DimMember = {};
};

inline constexpr std::array<std::string NameCall::*, 4> nameCallTexts = {
    &NameCall::cubeFile, &NameCall::CubeName, &NameCall::DimType, &NameCall::DimMember};

} // namespace qel
