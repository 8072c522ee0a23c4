#pragma once

#include "platform/dialog/DialogToolkit.h"

namespace qel {

/// The dialog that builds a name formula.
const FormDesign& NameFormDesign();

/// The names of its controls.
namespace NameForm {
inline constexpr const char* txtCubeFile = "txtCubeFile";
inline constexpr const char* CmdCubeFile = "CmdCubeFile";
inline constexpr const char* CmdDial = "CmdDial";
inline constexpr const char* cboDatabaseList = "cboDatabaseList";
inline constexpr const char* ComOBSNum =
    "ComOBSNum"; ///< restricts the members to those with data of this OBS name
inline constexpr const char* ComFirma = "ComFirma"; ///< restricts the members to those with data of this firm
inline constexpr const char* ComDim = "ComDim";     ///< dimension type: a level of summary groups
inline constexpr const char* cmbmember = "cmbmember"; ///< the members' codes and names
inline constexpr const char* TxtName = "TxtName";     ///< what the formula shows
inline constexpr const char* ListQuery = "ListQuery"; ///< the saved queries
inline constexpr const char* CmdRemove = "CmdRemove"; ///< deletes a saved query
inline constexpr const char* LabelVersion = "LabelVersion";
inline constexpr const char* CmdOK = "CmdOK";
inline constexpr const char* CmdCancel = "CmdCancel";
} // namespace NameForm

} // namespace qel
