; The installer for Windows: for the user who runs it, or as an administrator for all users (/CurrentUser, /AllUsers).
; makensis -DVERSION=... -DCONTENTS=folder -DREMOVAL=script -DOUTPUT=file [-DSTUB=amd64-unicode] setup.nsi
;   CONTENTS is what to install; REMOVAL deletes just that, by name, so that nobody else's file goes with it.
!ifdef STUB
    Target ${STUB}
!else
    Unicode true
!endif

!pragma warning disable 6012 ; a stub that knows its bitness leaves labels unused
!pragma warning disable 9000 ; the name of what is made for tests

!define PRODUCT OrmFuncQel4
!define UNINSTALL_KEY Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}
!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_INSTALLMODE_DEFAULT_CURRENTUSER
!define MULTIUSER_INSTALLMODE_INSTDIR ${PRODUCT}
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY ${UNINSTALL_KEY}
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME InstallLocation
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY ${UNINSTALL_KEY}
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME InstallLocation
!define MUI_ICON OrmFuncQel4.ico
!define MUI_UNICON OrmFuncQel4.ico
!include MultiUser.nsh
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include WordFunc.nsh
!include x64.nsh
!include Texts.nsh

Name "${PRODUCT} ${VERSION}"
OutFile "${OUTPUT}"
SetCompressor /SOLID lzma
SetDateSave off ; the same contents give the same bytes

Var nextStep
!define MUI_FINISHPAGE_TEXT "$nextStep"
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English ; Windows' own language selects; this one where neither is it
!insertmacro MUI_LANGUAGE Hebrew
!insertmacro Texts

VIProductVersion ${VERSION}.0
VIFileVersion ${VERSION}.0
VIAddVersionKey /LANG=${LANG_ENGLISH} ProductName ${PRODUCT}
VIAddVersionKey /LANG=${LANG_ENGLISH} FileDescription "${PRODUCT} setup"
VIAddVersionKey /LANG=${LANG_ENGLISH} FileVersion ${VERSION}
VIAddVersionKey /LANG=${LANG_ENGLISH} ProductVersion ${VERSION}
VIAddVersionKey /LANG=${LANG_ENGLISH} LegalCopyright "MIT licence"

!define StopWith "!insertmacro StopWith"
; A silent installer tells by its status alone.
!macro StopWith text
    SetErrorLevel 1
    MessageBox MB_OK|MB_ICONSTOP "${text}" /SD IDOK
    Abort "${text}"
!macroend

!include Server.nsh

Section "$(ProgramsTitle)" programs
    SectionIn RO
    Call RemoveEarlierVersion
    ClearErrors
    SetOutPath $INSTDIR
    File /r "${CONTENTS}/*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    ${If} ${Errors}
        ${StopWith} "$(CannotWrite)"
    ${EndIf}
    Call RegisterServers
    StrCpy $nextStep "$(StartExcel)"
    ${If} $MultiUser.InstallMode == AllUsers
        StrCpy $nextStep "$(ChooseInExcel)" ; each user's own list
    ${EndIf}

    CreateDirectory "$SMPROGRAMS\${PRODUCT}"
    CreateShortCut "$SMPROGRAMS\${PRODUCT}\$(DocumentationTitle).lnk" "$INSTDIR\README.html"
    CreateShortCut "$SMPROGRAMS\${PRODUCT}\$(ExampleTitle).lnk" "$INSTDIR\example"

    WriteRegStr SHCTX ${UNINSTALL_KEY} DisplayName "${PRODUCT}"
    WriteRegStr SHCTX ${UNINSTALL_KEY} DisplayVersion "${VERSION}"
    WriteRegStr SHCTX ${UNINSTALL_KEY} DisplayIcon "$INSTDIR\uninstall.exe"
    WriteRegStr SHCTX ${UNINSTALL_KEY} Publisher "The ${PRODUCT} developers"
    WriteRegStr SHCTX ${UNINSTALL_KEY} InstallLocation "$INSTDIR"
    WriteRegStr SHCTX ${UNINSTALL_KEY} UninstallString '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
    WriteRegStr SHCTX ${UNINSTALL_KEY} QuietUninstallString '"$INSTDIR\uninstall.exe" /S /$MultiUser.InstallMode'
    WriteRegDWORD SHCTX ${UNINSTALL_KEY} NoModify 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD SHCTX ${UNINSTALL_KEY} EstimatedSize $0
SectionEnd

!if /FileExists "${CONTENTS}/x64/qel.exe"
    !define WITH_QEL
    Section /o "$(SearchPathTitle)" searchPath
        Call AddToSearchPath
    SectionEnd
    !include SearchPath.nsh
!endif

Section Uninstall
    !ifdef WITH_QEL
        Call un.RemoveFromSearchPath
    !endif
    Call un.UnregisterServers
    Call un.MoveServersAside
    !include "${REMOVAL}"
    Delete "$INSTDIR\uninstall.exe"
    SetOutPath $TEMP ; the folder is not in use any more
    RMDir "$INSTDIR"
    RMDir /r "$SMPROGRAMS\${PRODUCT}"
    DeleteRegKey SHCTX ${UNINSTALL_KEY}
    ${If} $serverWasInUse = 1
        SetErrorLevel ${SERVER_WAS_IN_USE}
    ${EndIf}
SectionEnd

Function .onInit
    ${If} ${RunningX64}
        SetRegView 64
    ${EndIf}
    Push $INSTDIR ; of /D=
    !insertmacro MULTIUSER_INIT
    Pop $0
    ${If} $0 != ""
        StrCpy $INSTDIR $0
    ${EndIf}
    !ifdef WITH_QEL
        Call ReadSearchPathChoice
    !endif
FunctionEnd

Function un.onInit
    ${If} ${RunningX64}
        SetRegView 64
    ${EndIf}
    Push $INSTDIR
    !insertmacro MULTIUSER_UNINIT
    Pop $INSTDIR
FunctionEnd

; The version that stands there removes itself, in its own way; settings are none of its files.
Function RemoveEarlierVersion
    StrCpy $serverWasInUse 0
    ReadRegStr $0 SHCTX ${UNINSTALL_KEY} InstallLocation
    ${If} $0 == ""
    ${OrIfNot} ${FileExists} "$0\uninstall.exe"
        Return
    ${EndIf}
    ; It runs where it stands, so that it is waited for.
    ExecWait '"$0\uninstall.exe" /S /$MultiUser.InstallMode _?=$0' $1
    ${If} $1 == ${SERVER_WAS_IN_USE}
        StrCpy $serverWasInUse 1
    ${ElseIf} $1 <> 0
        ${StopWith} "$(EarlierVersionStays)"
    ${EndIf}
    Delete "$0\uninstall.exe"
    RMDir "$0"
FunctionEnd
