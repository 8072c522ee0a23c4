#pragma once

#include "wizard/WizardContext.h"

#include <string>

namespace qel {

/// Numbers of the dialogs' own texts among the component's strings; the suite's table may lack them.
namespace OwnTextNumber {
inline constexpr std::int32_t NoFormulaToEdit = 1499;
inline constexpr std::int32_t Everything = 1508;
inline constexpr std::int32_t CostCenters = 1509;
inline constexpr std::int32_t ObsLevels = 1510;
inline constexpr std::int32_t TooManyObsMembers = 1511;
inline constexpr std::int32_t NoDate = 1512;
inline constexpr std::int32_t ReversedDates = 1513;
inline constexpr std::int32_t DatesOutsideCube = 1514;
inline constexpr std::int32_t DroppedChoices = 1515;
inline constexpr std::int32_t NoObsMember = 1516;
inline constexpr std::int32_t NoAccount = 1517;
inline constexpr std::int32_t NoActivity = 1518;
inline constexpr std::int32_t NoMember = 1519;
inline constexpr std::int32_t FirstMemberCounts = 1520;
inline constexpr std::int32_t ListCounts = 1521;
inline constexpr std::int32_t LackingChoices = 1522;
inline constexpr std::int32_t RemoveQuery = 1527;
inline constexpr std::int32_t Value = 1529;
inline constexpr std::int32_t NoValueFormula = 1540;
inline constexpr std::int32_t NamesHaveNoLines = 1541;
inline constexpr std::int32_t FaultyArguments = 1542;
inline constexpr std::int32_t NoValue = 1543;
inline constexpr std::int32_t NoSuchCubeFile = 1544;
inline constexpr std::int32_t NoLines = 1545;
inline constexpr std::int32_t ProtectedSheet = 1546;
inline constexpr std::int32_t LinesBehind = 1547;
inline constexpr std::int32_t Lines = 1548;
inline constexpr std::int32_t SomeOf = 1549;
inline constexpr std::int32_t More = 1550;
inline constexpr std::int32_t TotalOfSome = 1551;
inline constexpr std::int32_t OtherTotal = 1552;
inline constexpr std::int32_t Total = 1553;
inline constexpr std::int32_t ReadingLines = 1554;
inline constexpr std::int32_t WhichCall = 1555;
inline constexpr std::int32_t LinesBehindCell = 1556;
inline constexpr std::int32_t NoFormulaOfOurs = 1660;
} // namespace OwnTextNumber

/// The text in the dialogs' language.
std::string OwnText(const WizardContext& context, std::int32_t number);

/// A warning with the component's name as its title.
void Warn(const WizardContext& context, const std::string& text);

/// Sets the captions and spoken names of the design's controls that are own texts.
void ShowOwnTexts(const WizardContext& context, const FormDesign& design, Dialog& dialog);

/// "Firma: 12", for the message about dropped choices: a label's text and a key.
std::string DroppedChoice(const WizardContext& context, std::int32_t label, const std::string& key);

/// "OrmFuncQel4 17.1.0".
std::string VersionText();

} // namespace qel
