; The installer for 64-bit Windows, all users, in English and Spanish; silent with /S (and
; /D=FOLDER as the last argument). Uninstalling keeps the user's settings.
; Needs /DVERSION=n.n.n, /DPROGRAMS=folder of the stripped programs, /DOUTPUT=file.
Target amd64-unicode
Unicode true
!include MUI2.nsh

!define NAME "Tessmar Vantor Update"
!define COMPANY "Tessmar Instruments"
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"

Name "${NAME}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\${NAME}"
; An upgrade installs into the existing folder.
InstallDirRegKey HKLM "${UNINSTALL}" "InstallLocation"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
BrandingText "${COMPANY}"

!define MUI_ICON "${RESOURCES}/vantor.ico"
!define MUI_UNICON "${RESOURCES}/vantor.ico"
!define MUI_FINISHPAGE_RUN "$INSTDIR\tsupdate.exe"
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
; The first language is the fallback for all other system languages.
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Spanish"
LangString InUse ${LANG_ENGLISH} "${NAME} is running. Close it and try again."
LangString InUse ${LANG_SPANISH} "${NAME} está abierto. Ciérrelo e inténtelo de nuevo."

VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=${LANG_ENGLISH} "ProductName" "${NAME}"
VIAddVersionKey /LANG=${LANG_ENGLISH} "CompanyName" "${COMPANY}"
VIAddVersionKey /LANG=${LANG_ENGLISH} "FileDescription" "${NAME} installer"
VIAddVersionKey /LANG=${LANG_ENGLISH} "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=${LANG_ENGLISH} "LegalCopyright" "${COMPANY}"

; A running program cannot be replaced, and a running update must not be disturbed. Opening the
; file for writing fails in both cases, before anything is changed.
!macro StopWhenOpen PROGRAM
  IfFileExists "$INSTDIR\${PROGRAM}" 0 +8
  ClearErrors
  FileOpen $0 "$INSTDIR\${PROGRAM}" a
  IfErrors 0 +4
  MessageBox MB_OK|MB_ICONEXCLAMATION "$(InUse)" /SD IDOK
  SetErrorLevel 2
  Quit
  FileClose $0
!macroend
!macro StopWhenInUse
  !insertmacro StopWhenOpen tsupdate.exe
  !insertmacro StopWhenOpen tsflash.exe
!macroend

Section
  !insertmacro StopWhenInUse
  SetShellVarContext all
  SetRegView 64
  SetOutPath "$INSTDIR"
  File "${PROGRAMS}/tsupdate.exe"
  File "${PROGRAMS}/tsflash.exe"
  File "${PROGRAMS}/tswuhelp.chm"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\tsupdate.exe"
  WriteRegStr HKLM "${UNINSTALL}" "DisplayName" "${NAME}"
  WriteRegStr HKLM "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL}" "DisplayIcon" "$INSTDIR\tsupdate.exe"
  WriteRegStr HKLM "${UNINSTALL}" "Publisher" "${COMPANY}"
  WriteRegStr HKLM "${UNINSTALL}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD HKLM "${UNINSTALL}" "NoRepair" 1
SectionEnd

Section Uninstall
  !insertmacro StopWhenInUse
  SetShellVarContext all
  SetRegView 64
  Delete "$INSTDIR\tsupdate.exe"
  Delete "$INSTDIR\tsflash.exe"
  Delete "$INSTDIR\tswuhelp.chm"
  Delete "$INSTDIR\uninstall.exe"
  ; Removes the folder only if it is empty.
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\${NAME}.lnk"
  DeleteRegKey HKLM "${UNINSTALL}"
SectionEnd
