; qel's folder in the search path, for those who ask for it (/PATH without windows).

!define ALL_USERS_ENVIRONMENT "SYSTEM\CurrentControlSet\Control\Session Manager\Environment"
!define LONGEST_SEARCH_PATH 900 ; a longer one would be cut: an installer's texts have 1023 letters

; $0: the folder of the qel that this Windows runs.
!macro ProgramFolder
    ${If} ${RunningX64}
        StrCpy $0 "$INSTDIR\x64"
    ${Else}
        StrCpy $0 "$INSTDIR\x86"
    ${EndIf}
!macroend

!macro ReadSearchPath
    ${If} $MultiUser.InstallMode == AllUsers
        ReadRegStr $1 HKLM "${ALL_USERS_ENVIRONMENT}" Path
    ${Else}
        ReadRegStr $1 HKCU Environment Path
    ${EndIf}
    StrLen $2 $1
!macroend

; Writes $1; programs that start from now on see it.
!macro WriteSearchPath
    ${If} $MultiUser.InstallMode == AllUsers
        WriteRegExpandStr HKLM "${ALL_USERS_ENVIRONMENT}" Path $1
    ${ElseIf} $1 == ""
        DeleteRegValue HKCU Environment Path
    ${Else}
        WriteRegExpandStr HKCU Environment Path $1
    ${EndIf}
    SendMessage ${HWND_BROADCAST} ${WM_SETTINGCHANGE} 0 "STR:Environment" /TIMEOUT=2000
!macroend

; Wanted on the command line, or chosen for the version that is there already.
Function ReadSearchPathChoice
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/PATH" $1
    ${If} ${Errors}
        ReadRegDWORD $1 SHCTX ${UNINSTALL_KEY} InSearchPath
        ${If} $1 <> 1
            Return
        ${EndIf}
    ${EndIf}
    SectionSetFlags ${searchPath} ${SF_SELECTED}
FunctionEnd

Function AddToSearchPath
    !insertmacro ProgramFolder
    !insertmacro ReadSearchPath
    ${If} $2 > ${LONGEST_SEARCH_PATH}
        DetailPrint "$(SearchPathTooLong) $0"
        MessageBox MB_OK|MB_ICONINFORMATION "$(SearchPathTooLong) $0" /SD IDOK
        Return
    ${EndIf}
    ${If} $1 == ""
        StrCpy $1 $0
    ${Else}
        ${WordAdd} $1 ";" "+$0" $1
    ${EndIf}
    !insertmacro WriteSearchPath
    WriteRegDWORD SHCTX ${UNINSTALL_KEY} InSearchPath 1
FunctionEnd

Function un.RemoveFromSearchPath
    ReadRegDWORD $0 SHCTX ${UNINSTALL_KEY} InSearchPath
    ${If} $0 <> 1
        Return
    ${EndIf}
    !insertmacro ProgramFolder
    !insertmacro ReadSearchPath
    ${If} $2 > ${LONGEST_SEARCH_PATH}
        MessageBox MB_OK|MB_ICONINFORMATION "$(SearchPathStays) $0" /SD IDOK
        Return
    ${EndIf}
    ${If} $1 == $0
        StrCpy $1 ""
    ${Else}
        ${un.WordAdd} $1 ";" "-$0" $1
    ${EndIf}
    !insertmacro WriteSearchPath
FunctionEnd
