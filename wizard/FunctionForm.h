#pragma once

#include "platform/dialog/DialogToolkit.h"

namespace qel {

/// The dialog that builds a value formula.
const FormDesign& FunctionFormDesign();

/// The names of its controls.
namespace FunctionForm {
inline constexpr const char* txtCubeFile = "txtCubeFile";
inline constexpr const char* CmdCubeFile = "CmdCubeFile";
inline constexpr const char* CmdDial = "CmdDial";
inline constexpr const char* cboDatabaseList = "cboDatabaseList";
inline constexpr const char* ComOBSNum = "ComOBSNum";     ///< OBS name
inline constexpr const char* ComObsX = "ComObsX";         ///< OBS number, of that name
inline constexpr const char* ComLevel = "ComLevel";       ///< All, cost centres, or levels of [OBS]
inline constexpr const char* ComLevelObs = "ComLevelObs"; ///< which level of [OBS]
inline constexpr const char* ComOBSData = "ComOBSData";   ///< the members to choose from
inline constexpr const char* ComAddOBS = "ComAddOBS";
inline constexpr const char* ComRemoveObs = "ComRemoveObs";
inline constexpr const char* ListObs = "ListObs"; ///< the members chosen
inline constexpr const char* LabelFirst =
    "LabelFirst"; ///< says that only the first of several members counts
inline constexpr const char* ComAccX = "ComAccX";
inline constexpr const char* ComMember = "ComMember";
inline constexpr const char* CheckAcc = "CheckAcc";
inline constexpr const char* ListAccount = "ListAccount";
inline constexpr const char* ChekAct = "ChekAct";
inline constexpr const char* ComActMember = "ComActMember";
inline constexpr const char* TxtDateFrom = "TxtDate(0)";
inline constexpr const char* TxtDateTo = "TxtDate(1)";
inline constexpr const char* ChcMeasure = "ChcMeasure";
inline constexpr const char* ComMoneySet = "ComMoneySet";
inline constexpr const char* ComFirma = "ComFirma";
inline constexpr const char* ComPlbs = "ComPlbs";
inline constexpr const char* ComRh = "ComRh";
inline constexpr const char* ComOB = "ComOB";
inline constexpr const char* Command1 = "Command1"; ///< Calculate
inline constexpr const char* TxtCalc = "TxtCalc";
inline constexpr const char* LabelVersion = "LabelVersion";
inline constexpr const char* CmdOK = "CmdOK";
inline constexpr const char* Command2 = "Command2"; ///< Single cell function
inline constexpr const char* CmdCancel = "CmdCancel";
} // namespace FunctionForm

} // namespace qel
