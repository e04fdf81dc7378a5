; The installer: for all users of 64-bit Windows, in English and Spanish, silent with /S (and
; /D=FOLDER as the last word). Settings are the user's and stay when the program is removed.
; Wants /DVERSION=n.n.n, /DPROGRAMS=folder of the stripped programs, /DOUTPUT=file.
Target amd64-unicode
Unicode true
!include MUI2.nsh

!define NAME "Tessmar Vantor Update"
!define COMPANY "Tessmar Instruments"
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"

Name "${NAME}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\${NAME}"
; A newer version goes where the older one is.
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
; The first is what every other language of the system gets.
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

; A program that runs cannot be replaced, and one that flashes must not be disturbed: opening it
; for writing tells both before anything is touched.
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
  ; Only when nothing else lies there.
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\${NAME}.lnk"
  DeleteRegKey HKLM "${UNINSTALL}"
SectionEnd
