; tavolo-setup.exe: installs Tavolo for the user who starts it; nobody needs to be an administrator. /S asks and shows nothing, /D=FOLDER (last)
; names the folder. The user's catalogue lies elsewhere (%LOCALAPPDATA%\Tavolo) and is neither made nor removed here.
; packaging/windows/build gives: VERSION, STAGE (the files as they are to lie), LISTS (the folder of
; install.nsh and remove.nsh, with lines for each of them), ICON, KILOBYTES, OUTPUT.
Unicode true
!include MUI2.nsh
!include LogicLib.nsh
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tavolo"
!define KIND "Tavolo.Table"  ; of table files, in the registry

Name "Tavolo"
OutFile "${OUTPUT}"
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true
InstallDir "$LOCALAPPDATA\Programs\Tavolo"
InstallDirRegKey HKCU "${UNINSTALL}" "InstallLocation"
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Tavolo"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Installs Tavolo"
VIAddVersionKey CompanyName "The Tavolo developers"
VIAddVersionKey LegalCopyright "The Tavolo developers, MIT License"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_FINISHPAGE_RUN "$INSTDIR\bin\tavolo.exe"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; Before anything is changed: the files of a program that runs cannot be replaced. Exit code 2 then.
!macro EndIfRunning
    ${If} ${FileExists} "$INSTDIR\bin\tavolo.exe"
        ClearErrors
        FileOpen $0 "$INSTDIR\bin\tavolo.exe" a
        ${If} ${Errors}
            MessageBox MB_OK|MB_ICONEXCLAMATION "Tavolo is running. Close it and try again." /SD IDOK
            SetErrorLevel 2
            Quit
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend

!macro TellDesktopOfKinds
    System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
!macroend

Section
    !insertmacro EndIfRunning
    !include "${LISTS}/install.nsh"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\Tavolo.lnk" "$INSTDIR\bin\tavolo.exe"

    ; What opened table files before is kept for the uninstaller.
    ReadRegStr $0 HKCU "Software\Classes\.vpt" ""
    ${If} $0 != "${KIND}"
        WriteRegStr HKCU "Software\Classes\${KIND}" "Before" "$0"
    ${EndIf}
    WriteRegStr HKCU "Software\Classes\.vpt" "" "${KIND}"
    WriteRegStr HKCU "Software\Classes\${KIND}" "" "Visual Pinball table"
    WriteRegStr HKCU "Software\Classes\${KIND}\DefaultIcon" "" "$INSTDIR\bin\tavolo.exe,0"
    WriteRegStr HKCU "Software\Classes\${KIND}\shell\open\command" "" '"$INSTDIR\bin\tavolo.exe" "%1"'
    !insertmacro TellDesktopOfKinds

    WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "Tavolo"
    WriteRegStr HKCU "${UNINSTALL}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL}" "DisplayIcon" "$INSTDIR\bin\tavolo.exe"
    WriteRegStr HKCU "${UNINSTALL}" "Publisher" "The Tavolo developers"
    WriteRegStr HKCU "${UNINSTALL}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL}" "EstimatedSize" ${KILOBYTES}
    WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
SectionEnd

; Only what was installed goes; a folder with anything else in it stays.
Section "Uninstall"
    !insertmacro EndIfRunning
    !include "${LISTS}/remove.nsh"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\Tavolo.lnk"

    ReadRegStr $0 HKCU "Software\Classes\.vpt" ""
    ${If} $0 == "${KIND}"
        ReadRegStr $1 HKCU "Software\Classes\${KIND}" "Before"
        ${If} $1 == ""
            DeleteRegValue HKCU "Software\Classes\.vpt" ""
            DeleteRegKey /ifempty HKCU "Software\Classes\.vpt"
        ${Else}
            WriteRegStr HKCU "Software\Classes\.vpt" "" "$1"
        ${EndIf}
    ${EndIf}
    DeleteRegKey HKCU "Software\Classes\${KIND}"
    DeleteRegKey HKCU "${UNINSTALL}"
    !insertmacro TellDesktopOfKinds
SectionEnd
