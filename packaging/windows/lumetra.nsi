; The installer: programs and libraries, a start menu entry for the viewer, and an uninstaller. Associations of files
; and the search path stay as they are.
; usage: makensis -DVERSION=... -DCONTENT=FOLDER -DOUTPUT=FILE lumetra.nsi
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
!include MUI2.nsh

Name "libLumetra ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\Lumetra"
!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Lumetra"
InstallDirRegKey HKLM "${KEY}" InstallLocation
RequestExecutionLevel admin
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "libLumetra"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Installs libLumetra"
VIAddVersionKey LegalCopyright "MIT licence"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_FINISHPAGE_RUN "$INSTDIR\bin\lumetra-viewer.exe"
!insertmacro MUI_PAGE_LICENSE "${CONTENT}/LICENSE.txt"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE German

Section
  SetShellVarContext all
  SetRegView 64
  ; What an earlier version has installed goes first.
  IfFileExists "$INSTDIR\uninstall.exe" 0 +2
    ExecWait '"$INSTDIR\uninstall.exe" /S _?=$INSTDIR'
  SetOutPath "$INSTDIR"
  File /r "${CONTENT}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateShortcut "$SMPROGRAMS\Lumetra Viewer.lnk" "$INSTDIR\bin\lumetra-viewer.exe"
  WriteRegStr HKLM "${KEY}" DisplayName "libLumetra"
  WriteRegStr HKLM "${KEY}" DisplayVersion "${VERSION}"
  WriteRegStr HKLM "${KEY}" DisplayIcon "$INSTDIR\bin\lumetra-viewer.exe"
  WriteRegStr HKLM "${KEY}" InstallLocation "$INSTDIR"
  WriteRegStr HKLM "${KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${KEY}" NoModify 1
  WriteRegDWORD HKLM "${KEY}" NoRepair 1
SectionEnd

Section Uninstall
  SetShellVarContext all
  SetRegView 64
  Delete "$SMPROGRAMS\Lumetra Viewer.lnk"
  ; Only what was installed: the folder may be one that holds more.
  !include "${REMOVALS}"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  DeleteRegKey HKLM "${KEY}"
SectionEnd
