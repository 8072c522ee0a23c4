; The automation server, a DLL for each bitness of Excel: registered by itself, and replaced while Excel holds it.

!define SERVER_WAS_IN_USE 3 ; the uninstaller's status
Var serverWasInUse
Var registeredServers

; Calls FUNCTION for each bitness with $0, the program that registers it, and $1, the DLL.
!macro ForServers function
    ${If} ${RunningX64}
        StrCpy $0 "$WINDIR\Sysnative\regsvr32.exe" ; as a 32-bit process calls the system's own
        ${IfNot} ${FileExists} $0
            StrCpy $0 "$WINDIR\System32\regsvr32.exe"
        ${EndIf}
        StrCpy $1 "$INSTDIR\x64\OrmFuncQel4.dll"
        Call ${function}
        StrCpy $0 "$WINDIR\SysWOW64\regsvr32.exe"
    ${Else}
        StrCpy $0 "$SYSDIR\regsvr32.exe"
    ${EndIf}
    StrCpy $1 "$INSTDIR\x86\OrmFuncQel4.dll"
    Call ${function}
!macroend

; $2: the words for regsvr32 between /s and the DLL.
!macro RegistrationWords unregister
    StrCpy $2 "${unregister}"
    ${If} $MultiUser.InstallMode == CurrentUser
        StrCpy $2 "$2 /n /i:user"
    ${EndIf}
!macroend

Function RegisterServer
    !insertmacro RegistrationWords ""
    ClearErrors
    ExecWait '"$0" /s $2 "$1"' $3
    ${If} ${Errors}
    ${OrIf} $3 <> 0
        DetailPrint "$(NotRegistered) $1"
    ${Else}
        IntOp $registeredServers $registeredServers + 1
    ${EndIf}
FunctionEnd

Function RegisterServers
    StrCpy $registeredServers 0
    !insertmacro ForServers RegisterServer
    ${If} $registeredServers = 0
        ${StopWith} "$(NotRegistered) $INSTDIR"
    ${EndIf}
    ${If} $serverWasInUse = 1
        DetailPrint "$(RestartExcel)"
        MessageBox MB_OK|MB_ICONINFORMATION "$(RestartExcel)" /SD IDOK
    ${EndIf}
FunctionEnd

Function un.UnregisterServer
    !insertmacro RegistrationWords /u
    ExecWait '"$0" /s $2 "$1"'
FunctionEnd

Function un.UnregisterServers
    !insertmacro ForServers un.UnregisterServer
FunctionEnd

!define ASIDE OrmFuncQel4.old

; A DLL that a program holds cannot be deleted, but it can be moved. $0: the DLL.
Function un.MoveServerAside
    ClearErrors
    Delete $0
    ${IfNot} ${Errors}
        Return
    ${EndIf}
    StrCpy $serverWasInUse 1
    GetTempFileName $1
    Delete $1
    ClearErrors
    Rename $0 "$1.${ASIDE}"
    ${If} ${Errors} ; the temporary folder is on another drive
        StrCpy $1 $0
        Rename $0 "$1.${ASIDE}"
    ${EndIf}
    Delete /REBOOTOK "$1.${ASIDE}"
FunctionEnd

Function un.MoveServersAside
    StrCpy $serverWasInUse 0
    Delete "$TEMP\*.${ASIDE}" ; of earlier times
    Delete "$INSTDIR\x64\*.${ASIDE}"
    Delete "$INSTDIR\x86\*.${ASIDE}"
    StrCpy $0 "$INSTDIR\x64\OrmFuncQel4.dll"
    Call un.MoveServerAside
    StrCpy $0 "$INSTDIR\x86\OrmFuncQel4.dll"
    Call un.MoveServerAside
FunctionEnd
