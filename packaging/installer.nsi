; The installer: makensis -DVERSION=1.2.3.4 -DSTAGE=FOLDER -DOUT=FILE -DSAMPLE_LIST=FILE installer.nsi
; STAGE is the program folder that tools/package put together. SAMPLE_LIST is a list of the macro Sample
; with the name of each file of the demonstration: they become the user's own once they are installed.
;   setup.exe [/S] [/AllUsers | /CurrentUser] [/D=FOLDER]
; Exit codes: 0 done, 1 cancelled, 2 failed, 3 a program of the folder is running.

Unicode true
ManifestDPIAware true
; A silent run would answer "Ignore" for each file that cannot be written, and return 0.
AllowSkipFiles off
SetCompressor /SOLID lzma
Name "Vesk Builder"
BrandingText "Vesk Builder ${VERSION}"
OutFile "${OUT}"
VIProductVersion "${VERSION}"
VIAddVersionKey "ProductName" "Vesk Builder"
VIAddVersionKey "FileDescription" "Vesk Builder Setup"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "CompanyName" "The Vesk Builder authors"
VIAddVersionKey "LegalCopyright" "Copyright (C) 2026 The Vesk Builder authors"

!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\VeskBuilder"
; A build empties the start menu's folder "Vesk Builder" and puts its own shortcuts there.
!define MENU "$SMPROGRAMS\Vesk Builder Setup"

!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_INSTALLMODE_INSTDIR "Vesk Builder"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${KEY}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME "InstallLocation"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${KEY}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME "InstallLocation"
!define MULTIUSER_INSTALLMODE_FUNCTION KeepFolder
!define MULTIUSER_INSTALLMODE_UNFUNCTION un.KeepFolder
!include MultiUser.nsh
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh

!define MUI_ICON "..\src\ui\resources\veskbuilder.ico"
!define MUI_WELCOMEFINISHPAGE_BITMAP "setup.bmp"
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\start-here.txt"
!define MUI_FINISHPAGE_SHOWREADME_TEXT "Show how to make the first build"
!insertmacro MUI_PAGE_LICENSE "${STAGE}\license.txt"
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; What the folder holds beside the sample; each is replaced by an upgrade and removed at the end.
!macro ForEachFile action
    !insertmacro ${action} "veskbuilder.exe"
    !insertmacro ${action} "veskbuild.exe"
    !insertmacro ${action} "x64\veskbuilder.exe"
    !insertmacro ${action} "x64\veskbuild.exe"
    !insertmacro ${action} "readme.txt"
    !insertmacro ${action} "start-here.txt"
    !insertmacro ${action} "guide.txt"
    !insertmacro ${action} "license.txt"
    !insertmacro ${action} "third-party.txt"
!macroend

!macro Install name
    File "/oname=${name}" "${STAGE}\${name}"
!macroend

!macro Remove name
    Delete "$INSTDIR\${name}"
!macroend

; The folder's programs must not be running: a file of theirs would stay behind.
!macro RequireClosed name
    ${If} ${FileExists} "$INSTDIR\${name}"
        ClearErrors
        FileOpen $0 "$INSTDIR\${name}" a
        ${If} ${Errors}
            MessageBox MB_OK|MB_ICONSTOP "$INSTDIR\${name} is running or cannot be written. Close it and start again." /SD IDOK
            SetErrorLevel 3
            Quit
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend

!macro RequireAllClosed
    !insertmacro RequireClosed "veskbuilder.exe"
    !insertmacro RequireClosed "veskbuild.exe"
    !insertmacro RequireClosed "x64\veskbuilder.exe"
    !insertmacro RequireClosed "x64\veskbuild.exe"
!macroend

; What /D= says, or where the uninstaller stands: each mode would put its own folder in its place.
Var OwnFolder

!macro KeepFolder
    ${If} $OwnFolder != ""
        StrCpy $INSTDIR $OwnFolder
    ${EndIf}
!macroend

Function KeepFolder
    !insertmacro KeepFolder
FunctionEnd

Function un.KeepFolder
    !insertmacro KeepFolder
FunctionEnd

!macro Fail text
    MessageBox MB_OK|MB_ICONSTOP "${text}" /SD IDOK
    SetErrorLevel 2
    Quit
!macroend

!define NO_RIGHTS "You need to be an administrator to install or remove Vesk Builder for all users."

; The message of MultiUser.nsh waits for an answer in a silent run, too.
!macro RequireRightsForAllUsers
    UserInfo::GetAccountType
    Pop $0
    ${GetParameters} $1
    ClearErrors
    ${GetOptions} $1 "/AllUsers" $1
    ${IfNot} ${Errors}
    ${AndIf} $0 != "Admin"
    ${AndIf} $0 != "Power"
        !insertmacro Fail "${NO_RIGHTS}"
    ${EndIf}
!macroend

; Takes the registry's root. Leaves 1 in $0 when the entry there is that of $INSTDIR, however that is
; spelled, else 0.
!macro StandsIn root
    ReadRegStr $0 ${root} "${KEY}" "InstallLocation"
    GetFullPathName /SHORT $0 $0
    GetFullPathName /SHORT $1 $INSTDIR
    ${If} $0 == $1
        StrCpy $0 1
    ${Else}
        StrCpy $0 0
    ${EndIf}
!macroend

Function .onInit
    StrCpy $OwnFolder $INSTDIR
    !insertmacro RequireRightsForAllUsers
    !insertmacro MULTIUSER_INIT
FunctionEnd

; Both kinds can be there: an uninstaller removes the one that it stands in.
Function un.onInit
    StrCpy $OwnFolder $INSTDIR
    !insertmacro RequireRightsForAllUsers
    !insertmacro MULTIUSER_UNINIT
    !insertmacro StandsIn HKCU
    ${If} $0 = 1
        Call un.MultiUser.InstallMode.CurrentUser
    ${Else}
        !insertmacro StandsIn HKLM
        ${If} $0 = 1
            Call un.MultiUser.InstallMode.AllUsers
            ${If} $MultiUser.InstallMode != "AllUsers"
                !insertmacro Fail "${NO_RIGHTS}"
            ${EndIf}
        ${EndIf}
    ${EndIf}
FunctionEnd

Section "Vesk Builder"
    !insertmacro RequireAllClosed
    SetOutPath "$INSTDIR\x64"
    SetOutPath "$INSTDIR"
    !insertmacro ForEachFile Install

    ; A catalogue that is there is the user's, and so are the archives: the sample is for a new folder.
    ${IfNot} ${FileExists} "$INSTDIR\veskbuilder.ini"
        SetOverwrite off
        !define Sample "!insertmacro Install"
        !include "${SAMPLE_LIST}"
        !undef Sample
        SetOverwrite on
    ${EndIf}

    ClearErrors
    CreateDirectory "${MENU}"
    CreateShortCut "${MENU}\Vesk Builder wizard.lnk" "$INSTDIR\veskbuilder.exe"
    CreateShortCut "${MENU}\Catalogue editor.lnk" "$INSTDIR\veskbuilder.exe" "-setup"
    CreateShortCut "${MENU}\Start here.lnk" "$INSTDIR\start-here.txt"
    CreateShortCut "${MENU}\Guide.lnk" "$INSTDIR\guide.txt"
    CreateShortCut "${MENU}\Uninstall.lnk" "$INSTDIR\uninstall.exe" "/$MultiUser.InstallMode"

    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr SHCTX "${KEY}" "DisplayName" "Vesk Builder"
    WriteRegStr SHCTX "${KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr SHCTX "${KEY}" "DisplayIcon" "$INSTDIR\veskbuilder.exe"
    WriteRegStr SHCTX "${KEY}" "Publisher" "The Vesk Builder authors"
    WriteRegStr SHCTX "${KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr SHCTX "${KEY}" "UninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
    WriteRegStr SHCTX "${KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode /S'
    WriteRegDWORD SHCTX "${KEY}" "NoModify" 1
    WriteRegDWORD SHCTX "${KEY}" "NoRepair" 1
    ${If} ${Errors}
        !insertmacro Fail "The files are installed, but not all of the entries in the start menu and in the list of programs could be made."
    ${EndIf}
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD SHCTX "${KEY}" "EstimatedSize" $0
SectionEnd

; un.SameFile: takes two paths from the stack, leaves 1 when both files hold the same bytes, else 0.
Function un.SameFile
    Exch $0
    Exch
    Exch $1
    Push $2
    Push $3
    Push $4
    Push $5
    StrCpy $5 0
    ClearErrors
    FileOpen $2 $0 r
    FileOpen $3 $1 r
    ${IfNot} ${Errors}
        ${Do}
            ClearErrors
            FileReadByte $2 $0
            ${If} ${Errors}
                StrCpy $0 "end"
            ${EndIf}
            ClearErrors
            FileReadByte $3 $1
            ${If} ${Errors}
                StrCpy $1 "end"
            ${EndIf}
            ${If} $0 == "end"
                ${ExitDo}
            ${EndIf}
        ${LoopUntil} $0 != $1
        ${If} $0 == $1
            StrCpy $5 1
        ${EndIf}
    ${EndIf}
    FileClose $2
    FileClose $3
    StrCpy $1 $5
    Pop $5
    Pop $4
    Pop $3
    Pop $2
    StrCpy $0 $1
    Pop $1
    Exch $0
FunctionEnd

!macro RemoveSample name
    File "/oname=$PLUGINSDIR\sample" "${STAGE}\${name}"
    Push "$INSTDIR\${name}"
    Push "$PLUGINSDIR\sample"
    Call un.SameFile
    Pop $0
    ${If} $0 == 1
        Delete "$INSTDIR\${name}"
    ${EndIf}
!macroend

Section "Uninstall"
    !insertmacro RequireAllClosed
    ClearErrors
    !insertmacro ForEachFile Remove
    ${If} ${Errors}
        !insertmacro Fail "Not all files in $INSTDIR could be removed."
    ${EndIf}
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR\x64"

    ; They may belong to a later installation in another folder.
    !insertmacro StandsIn SHCTX
    ${If} $0 = 1
        Delete "${MENU}\Vesk Builder wizard.lnk"
        Delete "${MENU}\Catalogue editor.lnk"
        Delete "${MENU}\Start here.lnk"
        Delete "${MENU}\Guide.lnk"
        Delete "${MENU}\Uninstall.lnk"
        RMDir "${MENU}"
        DeleteRegKey SHCTX "${KEY}"
    ${EndIf}

    ; The user's catalogue and archives stay. Only with the sample's own catalogue are the archives
    ; the sample's, and then only those that are still the same.
    InitPluginsDir
    File "/oname=$PLUGINSDIR\catalogue" "${STAGE}\veskbuilder.ini"
    Push "$INSTDIR\veskbuilder.ini"
    Push "$PLUGINSDIR\catalogue"
    Call un.SameFile
    Pop $0
    ${If} $0 == 1
        !define Sample "!insertmacro RemoveSample"
        !include "${SAMPLE_LIST}"
        !undef Sample
    ${EndIf}
    ; What the programs wrote about their last build.
    Delete "$INSTDIR\veskbuider.log"
    Delete "$INSTDIR\veskbuilder-problems.txt"
    RMDir "$INSTDIR"
SectionEnd
